// noxpentracker in harnesses and pipelines. What the core finds is taken from the core itself, run
// on the same pictures.
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "navigation/nox_navigation.h"
#include "noxvisuals/fake_navigation.h"
#include "noxvisuals/pen_buffer.h"
#include "pentracker/pen_tracker.h"
#include "support/harness.h"
#include "support/log_capture.h"
#include "support/pipeline.h"
#include "support/short_buffers.h"
#include "support/video_buffer.h"

namespace nox::test {
namespace {

constexpr const char *kCategory = "noxvideotracker";

// The core on its own, fed with the same buffers.
class Core {
 public:
  Core() : tracker_(pen_tracker_new()) {}
  ~Core() { pen_tracker_free(tracker_); }
  Core(const Core &) = delete;
  Core &operator=(const Core &) = delete;

  std::optional<ToldPosition> process(GstBuffer *buffer, const GstVideoInfo &info) {
    GstVideoFrame mapped;
    gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ);
    NoxVideoFrame frame;
    nox_video_frame_from_gst_video_frame(&frame, &mapped);
    float x = 0.0F;
    float y = 0.0F;
    std::int32_t pressed = 0;
    const int found = pen_tracker_process(tracker_, &frame, &frame, &x, &y, &pressed);
    gst_video_frame_unmap(&mapped);
    if (found == 0) return std::nullopt;
    return ToldPosition{x, y, pressed != 0};
  }

 private:
  PenTracker *tracker_;
};

// What leaves the src pad, in order: tracking events and buffers.
struct Output {
  std::vector<std::string> order;
  std::vector<ToldPosition> events;
  std::vector<GstBuffer *> buffers;  // not owned; only to compare
};

GstPadProbeReturn record_output(GstPad * /*pad*/, GstPadProbeInfo *info, gpointer data) {
  auto *output = static_cast<Output *>(data);
  if ((GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER) != 0) {
    output->order.emplace_back("buffer");
    output->buffers.push_back(GST_PAD_PROBE_INFO_BUFFER(info));
    return GST_PAD_PROBE_OK;
  }
  GstEvent *event = GST_PAD_PROBE_INFO_EVENT(info);
  if (GST_EVENT_TYPE(event) != GST_EVENT_CUSTOM_DOWNSTREAM) return GST_PAD_PROBE_OK;
  const GstStructure *structure = gst_event_get_structure(event);
  EXPECT_STREQ(gst_structure_get_name(structure), "NoxTrackingData");
  EXPECT_EQ(gst_structure_n_fields(structure), 3);
  EXPECT_STREQ(gst_structure_nth_field_name(structure, 0), "x");
  EXPECT_STREQ(gst_structure_nth_field_name(structure, 1), "y");
  EXPECT_STREQ(gst_structure_nth_field_name(structure, 2), "pressed");
  gfloat x = -1.0F;
  gfloat y = -1.0F;
  gboolean pressed = FALSE;
  EXPECT_TRUE(gst_structure_get(structure, "x", G_TYPE_FLOAT, &x, "y", G_TYPE_FLOAT, &y, "pressed",
                                G_TYPE_BOOLEAN, &pressed, nullptr));
  output->order.emplace_back("event");
  output->events.push_back({x, y, pressed != FALSE});
  return GST_PAD_PROBE_OK;
}

// The element between two test pads, with the core beside it.
class Tracker {
 public:
  explicit Tracker(GstVideoFormat format = GST_VIDEO_FORMAT_I420)
      : format_(format), harness_(new_harness("noxpentracker")) {
    const ObjectPtr<GstPad> src(gst_element_get_static_pad(element(), "src"));
    gst_pad_add_probe(src.get(),
                      static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER |
                                                   GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM),
                      record_output, &output_, nullptr);
    set_size(320, 180);
  }

  GstElement *element() { return harness_->element; }
  GstHarness *harness() { return harness_.get(); }
  const GstVideoInfo &info() const { return info_; }
  const Output &output() const { return output_; }
  // What the core found in the pictures pushed so far.
  const std::vector<ToldPosition> &expected() const { return expected_; }

  void set_size(int width, int height) {
    info_ = video_info(format_, width, height);
    gst_harness_set_src_caps(harness(), gst_video_info_to_caps(&info_));
  }
  GstBuffer *new_picture(const std::optional<Pen> &pen, int padding = 0) {
    GstBuffer *buffer = padding == 0 ? new_video_buffer(info_) : new_padded_buffer(info_, padding);
    draw_pen(buffer, info_, pen);
    return buffer;
  }
  // Takes over the buffer.
  GstFlowReturn push(GstBuffer *buffer) {
    if (const auto found = core_.process(buffer, info_)) expected_.push_back(*found);
    return gst_harness_push(harness(), buffer);
  }
  GstFlowReturn push(const std::optional<Pen> &pen) { return push(new_picture(pen)); }

  void expect_events_of_the_core() const {
    ASSERT_EQ(output_.events.size(), expected_.size());
    for (std::size_t i = 0; i < expected_.size(); ++i) {
      EXPECT_EQ(output_.events[i].x, expected_[i].x) << "event " << i;
      EXPECT_EQ(output_.events[i].y, expected_[i].y) << "event " << i;
      EXPECT_EQ(output_.events[i].pressed, expected_[i].pressed) << "event " << i;
    }
  }

 private:
  GstVideoFormat format_;
  Output output_;  // outlives the harness, whose pad writes to it
  Harness harness_;
  GstVideoInfo info_{};
  Core core_;
  std::vector<ToldPosition> expected_;
};

TEST(NoxPenTracker, SendsTheEventBeforeItsBuffer) {
  Tracker tracker;
  tracker.push(Pen{0.3, 0.6, false});
  tracker.push(std::nullopt);
  tracker.push(Pen{0.7, 0.4, false});
  EXPECT_EQ(tracker.output().order,
            (std::vector<std::string>{"event", "buffer", "buffer", "event", "buffer"}));
  tracker.expect_events_of_the_core();
}

TEST(NoxPenTracker, TellsPositionsMirroredAndTheStateOfThePen) {
  Tracker tracker;
  tracker.push(Pen{0.25, 0.75, false});
  tracker.push(Pen{0.26, 0.75, true});
  tracker.expect_events_of_the_core();
  ASSERT_EQ(tracker.output().events.size(), 2U);
  EXPECT_NEAR(tracker.output().events[0].x, 0.75F, 0.02F) << "x counts from the right";
  EXPECT_NEAR(tracker.output().events[0].y, 0.75F, 0.02F);
  EXPECT_FALSE(tracker.output().events[0].pressed);
  EXPECT_TRUE(tracker.output().events[1].pressed);
}

TEST(NoxPenTracker, DoesNotFindAPenFirstSeenPressed) {
  Tracker tracker;
  tracker.push(Pen{0.5, 0.5, true});
  EXPECT_EQ(tracker.output().order, std::vector<std::string>{"buffer"});
}

TEST(NoxPenTracker, WorksOnA420AndLeavesItAlone) {
  Tracker tracker(GST_VIDEO_FORMAT_A420);
  const BufferPtr reference(tracker.new_picture(Pen{0.5, 0.5, false}));
  tracker.push(Pen{0.5, 0.5, false});
  tracker.expect_events_of_the_core();
  EXPECT_EQ(tracker.output().events.size(), 1U);
  const BufferPtr out(gst_harness_pull(tracker.harness()));
  EXPECT_EQ(visible_samples(out.get(), tracker.info()),
            visible_samples(reference.get(), tracker.info()));
}

TEST(NoxPenTracker, ReadsPaddedStrides) {
  for (const int padding : {1, 7, 64}) {
    SCOPED_TRACE(padding);
    Tracker padded;
    padded.push(padded.new_picture(Pen{0.4, 0.3, false}, padding));
    Tracker plain;
    plain.push(Pen{0.4, 0.3, false});
    ASSERT_EQ(padded.output().events.size(), 1U);
    EXPECT_EQ(padded.output().events[0].x, plain.output().events[0].x);
    EXPECT_EQ(padded.output().events[0].y, plain.output().events[0].y);
  }
}

TEST(NoxPenTracker, ReadsBuffersWhoseMemoryEndsEarly) {
  for (const GstVideoFormat format : {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_A420}) {
    Tracker plain(format);
    const BufferPtr whole(plain.new_picture(Pen{0.4, 0.3, false}));
    plain.push(gst_buffer_ref(whole.get()));
    for (const ShortBuffer &buffer : short_buffers(whole.get(), plain.info())) {
      SCOPED_TRACE(buffer.layout);
      Tracker tracker(format);
      gst_harness_push(tracker.harness(), gst_buffer_ref(buffer.buffer.get()));
      ASSERT_EQ(tracker.output().events.size(), 1U);
      EXPECT_EQ(tracker.output().events[0].x, plain.output().events[0].x);
      EXPECT_EQ(tracker.output().events[0].y, plain.output().events[0].y);
      EXPECT_EQ(tracker.output().buffers, std::vector{buffer.buffer.get()});
    }
  }
}

TEST(NoxPenTracker, PassesABufferWithADividedPlane) {
  Tracker tracker;
  BufferPtr buffer = buffer_with_a_divided_plane(tracker.info());
  EXPECT_EQ(gst_harness_push(tracker.harness(), buffer.release()), GST_FLOW_OK);
  EXPECT_EQ(tracker.output().order, std::vector<std::string>{"buffer"});
}

TEST(NoxPenTracker, PassesTheSameBufferOn) {
  Tracker tracker;
  GstBuffer *buffer = tracker.new_picture(Pen{0.5, 0.5, false});
  GST_BUFFER_PTS(buffer) = 3 * GST_SECOND;
  tracker.push(buffer);
  const BufferPtr out(gst_harness_pull(tracker.harness()));
  EXPECT_EQ(out.get(), buffer);
  EXPECT_EQ(GST_BUFFER_PTS(out.get()), 3 * GST_SECOND);
}

TEST(NoxPenTracker, PassesASharedBufferOnWithoutACopy) {
  Tracker tracker;
  GstBuffer *buffer = tracker.new_picture(Pen{0.5, 0.5, false});
  GstMemory *memory = gst_buffer_peek_memory(buffer, 0);
  const BufferPtr second(gst_buffer_ref(buffer));  // as a tee holds it
  EXPECT_EQ(tracker.push(buffer), GST_FLOW_OK);
  EXPECT_EQ(tracker.output().events.size(), 1U);
  const BufferPtr out(gst_harness_pull(tracker.harness()));
  EXPECT_EQ(out.get(), buffer);
  EXPECT_EQ(gst_buffer_peek_memory(out.get(), 0), memory);
}

TEST(NoxPenTracker, ReadsSharedMemoryWithoutACopy) {
  Tracker tracker;
  const BufferPtr original(tracker.new_picture(Pen{0.5, 0.5, false}));
  GstBuffer *sharer = gst_buffer_copy(original.get());  // another buffer with the same memory
  GstMemory *memory = gst_buffer_peek_memory(sharer, 0);
  tracker.push(sharer);
  const BufferPtr out(gst_harness_pull(tracker.harness()));
  EXPECT_EQ(gst_buffer_peek_memory(out.get(), 0), memory);
}

TEST(NoxPenTracker, FollowsSizeChanges) {
  Tracker tracker;
  for (const auto &[width, height] :
       {std::pair{320, 180}, {641, 361}, {1, 1}, {2, 2}, {448, 252}, {320, 180}}) {
    tracker.set_size(width, height);
    EXPECT_EQ(tracker.push(Pen{0.5, 0.5, false}), GST_FLOW_OK);
  }
  tracker.expect_events_of_the_core();
  EXPECT_GE(tracker.output().events.size(), 4U);
  EXPECT_EQ(tracker.output().buffers.size(), 6U);
}

TEST(NoxPenTracker, HandsFlowReturnsBack) {
  for (const GstFlowReturn flow :
       {GST_FLOW_EOS, GST_FLOW_FLUSHING, GST_FLOW_ERROR, GST_FLOW_NOT_LINKED}) {
    Tracker tracker;
    tracker.push(std::nullopt);
    gst_pad_set_chain_function(
        tracker.harness()->sinkpad, +[](GstPad *pad, GstObject * /*parent*/, GstBuffer *buffer) {
          gst_buffer_unref(buffer);
          return static_cast<GstFlowReturn>(
              GPOINTER_TO_INT(g_object_get_data(G_OBJECT(pad), "flow")));
        });
    g_object_set_data(G_OBJECT(tracker.harness()->sinkpad), "flow", GINT_TO_POINTER(flow));
    EXPECT_EQ(tracker.push(Pen{0.5, 0.5, false}), flow);
  }
}

TEST(NoxPenTracker, LogsCapsAndPositions) {
  const LogCapture log(kCategory, GST_LEVEL_DEBUG);
  Tracker tracker;
  tracker.push(Pen{0.5, 0.5, false});
  tracker.push(Pen{0.5, 0.5, true});
  const std::vector<LogLine> lines = log.lines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].message.rfind("Got caps-event: 0x", 0), 0U) << lines[0].message;
  for (std::size_t i = 0; i < 2; ++i) {
    const ToldPosition &at = tracker.expected()[i];
    const std::string expected = "Got: " + std::to_string(static_cast<int>(at.x * 320.0F)) + "x" +
                                 std::to_string(static_cast<int>(at.y * 180.0F)) +
                                 (i == 0 ? ", Pressed: No" : ", Pressed: Yes");
    EXPECT_EQ(lines[1 + i].message, expected);
    EXPECT_EQ(lines[1 + i].level, GST_LEVEL_DEBUG);
    EXPECT_EQ(lines[1 + i].object, G_OBJECT(tracker.element()));
  }
}

TEST(NoxPenTracker, TellsTheNavigationObjectWhatItSends) {
  NavigationRecord record;
  GObject *navigation = fake_navigation_new(&record);
  Tracker tracker;
  g_object_set(tracker.element(), "navigation-object", navigation, nullptr);
  tracker.push(Pen{0.3, 0.6, false});
  tracker.push(std::nullopt);
  tracker.push(Pen{0.31, 0.6, false});
  tracker.push(Pen{0.31, 0.6, true});
  ASSERT_EQ(record.positions.size(), tracker.output().events.size());
  for (std::size_t i = 0; i < record.positions.size(); ++i) {
    EXPECT_EQ(record.positions[i].x, tracker.output().events[i].x);
    EXPECT_EQ(record.positions[i].y, tracker.output().events[i].y);
    EXPECT_EQ(record.positions[i].pressed, tracker.output().events[i].pressed);
  }
  g_object_set(tracker.element(), "navigation-object", nullptr, nullptr);
  tracker.push(Pen{0.32, 0.6, false});
  EXPECT_EQ(record.positions.size(), 3U) << "an object that was taken away hears nothing more";
  g_object_unref(navigation);
}

TEST(NoxPenTracker, KeepsOneReferenceToTheNavigationObject) {
  NavigationRecord record;
  Tracker tracker;
  GObject *first = fake_navigation_new(&record);
  GObject *second = fake_navigation_new(&record);
  EXPECT_EQ(first->ref_count, 1U);
  g_object_set(tracker.element(), "navigation-object", first, nullptr);
  EXPECT_EQ(first->ref_count, 2U);

  GObject *read = nullptr;
  g_object_get(tracker.element(), "navigation-object", &read, nullptr);
  EXPECT_EQ(read, first);
  EXPECT_EQ(first->ref_count, 3U);
  g_object_unref(read);

  tracker.push(Pen{0.5, 0.5, false});
  EXPECT_EQ(first->ref_count, 2U) << "a call leaves no reference behind";

  g_object_set(tracker.element(), "navigation-object", first, nullptr);
  EXPECT_EQ(first->ref_count, 2U) << "set to the object that it is";

  g_object_set(tracker.element(), "navigation-object", second, nullptr);
  EXPECT_EQ(first->ref_count, 1U);
  EXPECT_EQ(second->ref_count, 2U);
  g_object_unref(second);
  EXPECT_EQ(record.alive, 2) << "the property keeps it alive";
  g_object_set(tracker.element(), "navigation-object", nullptr, nullptr);
  EXPECT_EQ(record.alive, 1);
  g_object_get(tracker.element(), "navigation-object", &read, nullptr);
  EXPECT_EQ(read, nullptr);
  g_object_unref(first);
}

TEST(NoxPenTracker, DeliberatelyKeepsItsReferenceBeyondItsEnd) {
  NavigationRecord record;
  GObject *navigation = fake_navigation_new(&record);
  {
    Tracker tracker;
    g_object_set(tracker.element(), "navigation-object", navigation, nullptr);
  }
  EXPECT_EQ(navigation->ref_count, 2U);
  g_object_unref(navigation);
  g_object_unref(navigation);
  EXPECT_EQ(record.alive, 0);
}

TEST(NoxPenTracker, DescribesItsProperty) {
  Tracker tracker;
  GParamSpec *spec =
      g_object_class_find_property(G_OBJECT_GET_CLASS(tracker.element()), "navigation-object");
  ASSERT_NE(spec, nullptr);
  EXPECT_STREQ(g_param_spec_get_nick(spec), "Navigation Object");
  EXPECT_STREQ(g_param_spec_get_blurb(spec), "An object implementing the NoxNavigation Interface");
  EXPECT_STREQ(g_type_name(spec->value_type), "NoxNavigation");
  EXPECT_EQ(spec->flags & G_PARAM_READWRITE, G_PARAM_READWRITE);
}

TEST(NoxPenTracker, WarnsOfAWrongPropertyIdAndLeavesTheValuesAlone) {
  NavigationRecord record;
  GObject *navigation = fake_navigation_new(&record);
  Tracker tracker;
  GObject *element = G_OBJECT(tracker.element());
  g_object_set(element, "navigation-object", navigation, nullptr);
  GObjectClass *klass = G_OBJECT_GET_CLASS(element);
  GParamSpec *pspec = g_object_class_find_property(klass, "navigation-object");
  GValue value = G_VALUE_INIT;
  g_value_init(&value, NOX_TYPE_NAVIGATION);
  for (const guint id : {0U, 2U}) {
    const std::string message = "*invalid property id " + std::to_string(id) + "*";
    g_test_expect_message(nullptr, G_LOG_LEVEL_WARNING, message.c_str());
    klass->set_property(element, id, &value, pspec);
    g_test_assert_expected_messages();
    g_test_expect_message(nullptr, G_LOG_LEVEL_WARNING, message.c_str());
    klass->get_property(element, id, &value, pspec);
    g_test_assert_expected_messages();
    EXPECT_EQ(g_value_get_object(&value), nullptr) << id;
    EXPECT_EQ(navigation->ref_count, 2U) << id;
  }
  g_value_unset(&value);
  g_object_set(element, "navigation-object", nullptr, nullptr);
  g_object_unref(navigation);
}

TEST(NoxPenTracker, SurvivesDisposeTwice) {
  GstElement *element = gst_element_factory_make("noxpentracker", nullptr);
  ASSERT_NE(element, nullptr);
  gst_object_ref_sink(element);
  g_object_run_dispose(G_OBJECT(element));
  gst_object_unref(element);
}

TEST(NoxPenTracker, RunsInPipelines) {
  for (const char *format : {"I420", "A420"}) {
    const std::string source = std::string("videotestsrc num-buffers=5 ! video/x-raw,format=") +
                               format + ",width=322,height=242 ! ";
    EXPECT_EQ(run_pipeline(source + "noxpentracker ! videoconvert ! fakesink"), "");
    EXPECT_EQ(run_pipeline(source + "tee name=t ! queue ! noxpentracker ! fakesink "
                                    "t. ! queue ! noxpentracker ! fakesink"),
              "");
  }
  EXPECT_NE(run_pipeline("videotestsrc num-buffers=1 ! video/x-raw,format=NV12 ! noxpentracker ! "
                         "fakesink"),
            "");
}

TEST(NoxPenTrackerDeathTest, CapsWithoutVideoInfoAreFatal) {
  const auto push_bad_caps = [] {
    Harness harness = new_harness("noxpentracker");
    const ObjectPtr<GstPad> sink(gst_element_get_static_pad(harness->element, "sink"));
    // The pad template admits this size, but no frame of it can be described.
    GstCaps *caps = gst_caps_from_string(
        "video/x-raw, format=(string)I420, width=(int)2147483647, height=(int)2147483647, "
        "framerate=(fraction)30/1");
    gst_pad_send_event(sink.get(), gst_event_new_stream_start("test"));
    gst_pad_send_event(sink.get(), gst_event_new_caps(caps));
  };
  EXPECT_DEATH(push_bad_caps(), "assertion failed: \\(ret\\)");
}

TEST(NoxPenTrackerDeathTest, ABufferThatCannotBeMappedIsFatal) {
  const auto push_short_buffer = [] {
    Tracker tracker;
    gst_harness_push(tracker.harness(), gst_buffer_new_allocate(nullptr, 16, nullptr));
  };
  EXPECT_DEATH(push_short_buffer(), "assertion failed: \\(ret\\)");
}

}  // namespace
}  // namespace nox::test
