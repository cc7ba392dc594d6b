// noxvectorizer in harnesses and pipelines. What the drawing is like is taken from the core itself,
// run on the same pictures.
#include <gst/video/gstvideometa.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "support/harness.h"
#include "support/log_capture.h"
#include "support/pipeline.h"
#include "support/random.h"
#include "support/short_buffers.h"
#include "support/video_buffer.h"
#include "vectorizer/vectorizer.h"

namespace nox::test {
namespace {

using Samples = std::vector<std::uint8_t>;

constexpr const char *kCategory = "noxvectorizer";

// The core on its own, fed with copies of the same buffers.
class Core {
 public:
  Core() : state_(vectorizer_new()) {}
  ~Core() { vectorizer_free(state_); }
  Core(const Core &) = delete;
  Core &operator=(const Core &) = delete;

  // The visible samples of the drawing.
  Samples draw(GstBuffer *buffer, const GstVideoInfo &info) {
    const BufferPtr copy(gst_buffer_copy_deep(buffer));
    GstVideoFrame mapped;
    gst_video_frame_map(&mapped, &info, copy.get(), GST_MAP_READWRITE);
    NoxVideoFrame frame;
    nox_video_frame_from_gst_video_frame(&frame, &mapped);
    vectorizer_process(state_, &frame, &frame);
    gst_video_frame_unmap(&mapped);
    return visible_samples(copy.get(), info);
  }

 private:
  VectorizerState *state_;
};

// The memory of a buffer after the core has drawn its picture, with room behind its end.
Samples drawn_in_long_memory(GstBuffer *buffer, const GstVideoInfo &info) {
  GstVideoFrame mapped;
  gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ);
  NoxVideoFrame frame;
  nox_video_frame_from_gst_video_frame(&frame, &mapped);
  Samples memory(mapped.map[0].data, mapped.map[0].data + mapped.map[0].size);
  memory.resize(memory.size() + 1000);
  for (int p = 0; p < frame.n_planes; ++p) {
    frame.planes[p] = memory.data() + (frame.planes[p] - mapped.map[0].data);
  }
  gst_video_frame_unmap(&mapped);
  VectorizerState *state = vectorizer_new();
  vectorizer_process(state, &frame, &frame);
  vectorizer_free(state);
  return memory;
}

// The element between two test pads, with the core beside it.
class Vectorizer {
 public:
  explicit Vectorizer(GstVideoFormat format = GST_VIDEO_FORMAT_I420)
      : format_(format), harness_(new_harness("noxvectorizer")) {
    set_size(64, 36);
  }

  GstElement *element() { return harness_->element; }
  GstHarness *harness() { return harness_.get(); }
  const GstVideoInfo &info() const { return info_; }

  void set_size(int width, int height) {
    info_ = video_info(format_, width, height);
    gst_harness_set_src_caps(harness(), gst_video_info_to_caps(&info_));
  }
  // Noise with an upright border down the middle, so that there is an edge that lasts.
  GstBuffer *new_picture(int padding = 0) {
    GstBuffer *buffer = padding == 0 ? new_video_buffer(info_) : new_padded_buffer(info_, padding);
    GstMapInfo map;
    gst_buffer_map(buffer, &map, GST_MAP_WRITE);
    random_.fill(map.data, map.size);
    gst_buffer_unmap(buffer, &map);
    GstVideoFrame mapped;
    gst_video_frame_map(&mapped, &info_, buffer, GST_MAP_WRITE);
    NoxVideoFrame frame;
    nox_video_frame_from_gst_video_frame(&frame, &mapped);
    for (int y = 0; y < frame.height; ++y) {
      for (int x = 0; x < frame.width; ++x) {
        std::uint8_t &luma = frame.planes[0][y * frame.strides[0] + x];
        luma = static_cast<std::uint8_t>(luma / 64 + (2 * x < frame.width ? 30 : 200));
      }
    }
    gst_video_frame_unmap(&mapped);
    return buffer;
  }
  BufferPtr push(GstBuffer *buffer) {
    return BufferPtr(gst_harness_push_and_pull(harness(), buffer));
  }
  // Pushes pictures and expects the core's drawings of them.
  void expect_drawings_of_the_core(int frames, int padding = 0) {
    for (int i = 0; i < frames; ++i) {
      GstBuffer *buffer = new_picture(padding);
      const Samples expected = core_.draw(buffer, info_);
      const BufferPtr out = push(buffer);
      ASSERT_NE(out, nullptr);
      ASSERT_EQ(visible_samples(out.get(), info_), expected) << "frame " << i;
    }
  }

 private:
  GstVideoFormat format_;
  Harness harness_;
  GstVideoInfo info_{};
  Core core_;
  Random random_{91};
};

TEST(NoxVectorizer, PushesTheDrawingOfTheCore) {
  Vectorizer vectorizer;
  vectorizer.expect_drawings_of_the_core(130);
}

TEST(NoxVectorizer, DrawsPaddedPictures) {
  for (const int padding : {1, 4, 64}) {
    SCOPED_TRACE(padding);
    Vectorizer vectorizer;
    vectorizer.expect_drawings_of_the_core(105, padding);
  }
}

TEST(NoxVectorizer, DrawsTheSameSamplesWhereMemoryEndsEarly) {
  for (const GstVideoFormat format : {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_A420}) {
    Vectorizer source(format);
    source.set_size(37, 22);
    const BufferPtr picture(source.new_picture());
    for (const ShortBuffer &buffer : short_buffers(picture.get(), source.info())) {
      SCOPED_TRACE(buffer.layout);
      Vectorizer whole(format), cut(format);
      whole.set_size(37, 22);
      cut.set_size(37, 22);
      for (int i = 1; i <= 102; ++i) {
        const BufferPtr expected = whole.push(gst_buffer_ref(picture.get()));
        const BufferPtr out = cut.push(gst_buffer_ref(buffer.buffer.get()));
        ASSERT_EQ(visible_samples(out.get(), cut.info()),
                  visible_samples(expected.get(), whole.info()))
            << "frame " << i;
      }
    }
  }
}

// As far as the memory reaches, each of its bytes is as if it went on.
TEST(NoxVectorizer, FillsThePaddingThatAShortMemoryHas) {
  Vectorizer vectorizer;
  const BufferPtr picture(vectorizer.new_picture());
  for (const ShortBuffer &buffer : short_buffers(picture.get(), vectorizer.info())) {
    if (gst_buffer_n_memory(buffer.buffer.get()) > 1) continue;
    SCOPED_TRACE(buffer.layout);
    Samples expected = drawn_in_long_memory(buffer.buffer.get(), vectorizer.info());
    Vectorizer fresh;
    const BufferPtr out = fresh.push(gst_buffer_ref(buffer.buffer.get()));
    expected.resize(gst_buffer_get_size(out.get()));
    Samples drawn(expected.size());
    gst_buffer_extract(out.get(), 0, drawn.data(), drawn.size());
    EXPECT_EQ(drawn, expected);
  }
}

TEST(NoxVectorizer, PushesABufferWithADividedPlane) {
  Vectorizer vectorizer;
  const BufferPtr out = vectorizer.push(buffer_with_a_divided_plane(vectorizer.info()).release());
  ASSERT_NE(out, nullptr);
  // 0x5A in what its memory holds of the first plane.
  std::uint8_t luma = 0;
  gst_buffer_extract(out.get(), 0, &luma, 1);
  EXPECT_EQ(luma, (255 * 48 + 0x5A * 16 + 32) >> 6);
}

// GStreamer rounds strides up to four: chroma strides are then not half the luma's.
TEST(NoxVectorizer, FollowsSizeChangesInMidStream) {
  Vectorizer vectorizer;
  for (const auto &[width, height] :
       {std::pair{1, 1}, {2, 3}, {100, 100}, {101, 5}, {7, 90}, {64, 36}, {64, 37}, {1, 1}}) {
    SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
    vectorizer.set_size(width, height);
    vectorizer.expect_drawings_of_the_core(3);
  }
}

TEST(NoxVectorizer, HasNoHistoryBehindASizeChange) {
  Vectorizer vectorizer;
  vectorizer.expect_drawings_of_the_core(100);
  vectorizer.set_size(64, 38);
  const BufferPtr out = vectorizer.push(vectorizer.new_picture());
  const Samples drawn = visible_samples(out.get(), vectorizer.info());
  // Washed out, no luma is below (255 * 48 + 32) >> 6.
  EXPECT_GE(*std::min_element(drawn.begin(), drawn.begin() + 64 * 38), 191);
}

TEST(NoxVectorizer, PassesTheAlphaPlaneOn) {
  Vectorizer vectorizer(GST_VIDEO_FORMAT_A420);
  vectorizer.expect_drawings_of_the_core(101);
  GstBuffer *buffer = vectorizer.new_picture();
  const Samples in = visible_samples(buffer, vectorizer.info());
  const BufferPtr out = vectorizer.push(buffer);
  const Samples drawn = visible_samples(out.get(), vectorizer.info());
  const std::size_t alpha = in.size() - std::size_t{64} * 36;
  EXPECT_EQ(Samples(drawn.begin() + static_cast<std::ptrdiff_t>(alpha), drawn.end()),
            Samples(in.begin() + static_cast<std::ptrdiff_t>(alpha), in.end()));
  EXPECT_NE(drawn, in);
}

TEST(NoxVectorizer, PushesAnotherBufferAlsoForOneThatCouldBeWrittenTo) {
  Vectorizer vectorizer;
  GstBuffer *in = vectorizer.new_picture();
  GstMemory *memory = gst_buffer_peek_memory(in, 0);
  ASSERT_TRUE(gst_buffer_is_writable(in));
  gst_memory_ref(memory);  // so that its address is not used again
  const BufferPtr out = vectorizer.push(in);
  EXPECT_NE(gst_buffer_peek_memory(out.get(), 0), memory);
  gst_memory_unref(memory);
}

TEST(NoxVectorizer, NeverWritesTheInput) {
  Vectorizer vectorizer;
  for (int i = 0; i < 3; ++i) {
    const BufferPtr in(vectorizer.new_picture());
    const Samples before = visible_samples(in.get(), vectorizer.info());
    const BufferPtr out = vectorizer.push(gst_buffer_ref(in.get()));
    EXPECT_NE(out.get(), in.get());
    EXPECT_EQ(visible_samples(in.get(), vectorizer.info()), before);
    EXPECT_NE(visible_samples(out.get(), vectorizer.info()), before);
  }
}

TEST(NoxVectorizer, KeepsTimestampsFlagsAndMetas) {
  Vectorizer vectorizer;
  GstBuffer *in = vectorizer.new_picture(8);
  GST_BUFFER_PTS(in) = 7 * GST_SECOND;
  GST_BUFFER_DTS(in) = 6 * GST_SECOND;
  GST_BUFFER_DURATION(in) = GST_SECOND / 30;
  GST_BUFFER_OFFSET(in) = 210;
  GST_BUFFER_OFFSET_END(in) = 211;
  GST_BUFFER_FLAG_SET(in, GST_BUFFER_FLAG_DISCONT);
  gst_buffer_add_video_region_of_interest_meta(in, "face", 1, 2, 3, 4);
  const BufferPtr out = vectorizer.push(in);
  EXPECT_EQ(GST_BUFFER_PTS(out.get()), 7 * GST_SECOND);
  EXPECT_EQ(GST_BUFFER_DTS(out.get()), 6 * GST_SECOND);
  EXPECT_EQ(GST_BUFFER_DURATION(out.get()), GST_SECOND / 30);
  EXPECT_EQ(GST_BUFFER_OFFSET(out.get()), 210U);
  EXPECT_EQ(GST_BUFFER_OFFSET_END(out.get()), 211U);
  EXPECT_TRUE(GST_BUFFER_FLAG_IS_SET(out.get(), GST_BUFFER_FLAG_DISCONT));
  EXPECT_EQ(gst_buffer_get_video_meta(out.get())->stride[0], 64 + 8);
  const GstVideoRegionOfInterestMeta *region =
      gst_buffer_get_video_region_of_interest_meta_id(out.get(), 0);
  ASSERT_NE(region, nullptr);
  EXPECT_EQ(region->x, 1U);
  EXPECT_EQ(region->h, 4U);
}

TEST(NoxVectorizer, ReturnsTheFlowOfDownstream) {
  Vectorizer vectorizer;
  EXPECT_EQ(gst_harness_push(vectorizer.harness(), vectorizer.new_picture()), GST_FLOW_OK);
  for (const GstFlowReturn flow : {GST_FLOW_FLUSHING, GST_FLOW_EOS}) {
    Vectorizer other;
    const ObjectPtr<GstPad> src(gst_element_get_static_pad(other.element(), "src"));
    if (flow == GST_FLOW_FLUSHING) {
      gst_pad_set_active(other.harness()->sinkpad, FALSE);
    } else {
      gst_pad_push_event(src.get(), gst_event_new_eos());
    }
    EXPECT_EQ(gst_harness_push(other.harness(), other.new_picture()), flow);
  }
}

TEST(NoxVectorizer, ForwardsTheCapsEventAndLogsItAtDebug) {
  const LogCapture log(kCategory, GST_LEVEL_DEBUG);
  Vectorizer vectorizer;
  vectorizer.push(vectorizer.new_picture());
  const CapsPtr in(gst_video_info_to_caps(&vectorizer.info()));
  const CapsPtr out(gst_pad_get_current_caps(vectorizer.harness()->sinkpad));
  EXPECT_TRUE(gst_caps_is_equal(in.get(), out.get()));
  const std::vector<LogLine> lines = log.lines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, GST_LEVEL_DEBUG);
  EXPECT_EQ(lines[0].object, G_OBJECT(vectorizer.element()));
  EXPECT_EQ(lines[0].message.rfind("Got caps-event: 0x", 0), 0U) << lines[0].message;
}

TEST(NoxVectorizer, ForwardsOtherEvents) {
  Vectorizer vectorizer;
  while (GstEvent *event = gst_harness_try_pull_event(vectorizer.harness())) gst_event_unref(event);
  EXPECT_TRUE(gst_harness_push_event(vectorizer.harness(), gst_event_new_eos()));
  GstEvent *event = gst_harness_pull_event(vectorizer.harness());
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(GST_EVENT_TYPE(event), GST_EVENT_EOS);
  gst_event_unref(event);
}

TEST(NoxVectorizer, HasItsPadsWithProxies) {
  Vectorizer vectorizer;
  for (const char *name : {"src", "sink"}) {
    const ObjectPtr<GstPad> pad(gst_element_get_static_pad(vectorizer.element(), name));
    ASSERT_NE(pad, nullptr) << name;
    EXPECT_TRUE(GST_PAD_IS_PROXY_CAPS(pad.get()));
    EXPECT_TRUE(GST_PAD_IS_PROXY_ALLOCATION(pad.get()));
  }
}

TEST(NoxVectorizer, WarnsOfAnyPropertyId) {
  Vectorizer vectorizer;
  GObjectClass *klass = G_OBJECT_GET_CLASS(vectorizer.element());
  GParamSpec *pspec = g_object_class_find_property(klass, "name");
  GValue value = G_VALUE_INIT;
  g_value_init(&value, G_TYPE_STRING);
  for (const bool set : {true, false}) {
    g_test_expect_message(nullptr, G_LOG_LEVEL_WARNING, "*invalid property id 1 for \"name\"*");
    if (set) {
      klass->set_property(G_OBJECT(vectorizer.element()), 1, &value, pspec);
    } else {
      klass->get_property(G_OBJECT(vectorizer.element()), 1, &value, pspec);
    }
    g_test_assert_expected_messages();
  }
  g_value_unset(&value);
}

TEST(NoxVectorizer, RegistersTheNamesOfItsFunctions) {
  Vectorizer vectorizer;
  GObjectClass *klass = G_OBJECT_GET_CLASS(vectorizer.element());
  const ObjectPtr<GstPad> sink(gst_element_get_static_pad(vectorizer.element(), "sink"));
  const auto name_of = [](auto function) { return std::string(GST_DEBUG_FUNCPTR_NAME(function)); };
  EXPECT_EQ(name_of(klass->dispose), "nox_vectorizer_dispose");
  EXPECT_EQ(name_of(klass->set_property), "nox_vectorizer_set_property");
  EXPECT_EQ(name_of(klass->get_property), "nox_vectorizer_get_property");
  EXPECT_EQ(name_of(GST_PAD_EVENTFUNC(sink.get())), "nox_vectorizer_sink_event");
  EXPECT_EQ(name_of(GST_PAD_CHAINFUNC(sink.get())), "nox_vectorizer_chain");
}

TEST(NoxVectorizer, SurvivesDisposeTwice) {
  GstElement *element = gst_element_factory_make("noxvectorizer", nullptr);
  ASSERT_NE(element, nullptr);
  gst_object_ref_sink(element);
  g_object_run_dispose(G_OBJECT(element));
  gst_object_unref(element);
}

TEST(NoxVectorizer, RunsInPipelinesOfBothFormatsAndOddSizes) {
  for (const char *caps : {"format=I420,width=322,height=242", "format=A420,width=100,height=100",
                           "format=I420,width=101,height=33", "format=I420,width=1,height=1"}) {
    SCOPED_TRACE(caps);
    EXPECT_EQ(run_pipeline(std::string("videotestsrc num-buffers=110 ! video/x-raw,") + caps +
                           " ! noxvectorizer ! videoconvert ! video/x-raw,format=BGRx ! fakesink"),
              "");
  }
}

TEST(NoxVectorizer, RunsBehindATeeWhoseOtherBranchKeepsTheBuffers) {
  EXPECT_EQ(run_pipeline("videotestsrc num-buffers=20 ! video/x-raw,format=I420 ! tee name=t "
                         "t. ! queue ! noxvectorizer ! fakesink t. ! queue ! fakesink"),
            "");
}

TEST(NoxVectorizer, RefusesOtherFormatsAtNegotiation) {
  EXPECT_NE(run_pipeline("videotestsrc num-buffers=1 ! video/x-raw,format=NV12 ! noxvectorizer ! "
                         "fakesink"),
            "");
}

}  // namespace
}  // namespace nox::test
