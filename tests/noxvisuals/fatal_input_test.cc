// Caps and buffers that hold no picture: which of them an element answers with the end of the
// process, as it must, and how a host keeps them away.
#include <gst/gst.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "c/video_guard.h"
#include "noxvisuals/every_element.h"
#include "support/pad_line.h"

namespace nox::test {
namespace {

// Memory that nobody can look into.
struct ClosedAllocator {
  GstAllocator parent;
};
struct ClosedAllocatorClass {
  GstAllocatorClass parent_class;
};
G_DEFINE_TYPE(ClosedAllocator, closed_allocator, GST_TYPE_ALLOCATOR)

void closed_allocator_free(GstAllocator * /*allocator*/, GstMemory *memory) {
  g_free(memory);
}
void closed_allocator_class_init(ClosedAllocatorClass *klass) {
  GST_ALLOCATOR_CLASS(klass)->free = closed_allocator_free;
}
void closed_allocator_init(ClosedAllocator *self) {
  GST_ALLOCATOR(self)->mem_type = "closed";
  GST_ALLOCATOR(self)->mem_map = [](GstMemory *, gsize, GstMapFlags) -> gpointer {
    return nullptr;
  };
  GST_ALLOCATOR(self)->mem_unmap = [](GstMemory *) {};
}

GstBuffer *new_closed_buffer() {
  auto *allocator = GST_ALLOCATOR(g_object_new(closed_allocator_get_type(), nullptr));
  gst_object_ref_sink(allocator);
  GstMemory *memory = g_new0(GstMemory, 1);
  const gsize size = small_info().size;
  gst_memory_init(memory, static_cast<GstMemoryFlags>(0), allocator, nullptr, size, 0, 0, size);
  gst_object_unref(allocator);
  GstBuffer *buffer = gst_buffer_new();
  gst_buffer_append_memory(buffer, memory);
  return buffer;
}

GstBuffer *new_short_buffer() {
  return gst_buffer_new_allocate(nullptr, small_info().size - 1, nullptr);
}

GstBuffer *new_buffer_with_meta(GstVideoFormat format, guint width, guint height) {
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, 2 * small_info().size, nullptr);
  gst_buffer_add_video_meta(buffer, GST_VIDEO_FRAME_FLAG_NONE, format, width, height);
  return buffer;
}
GstBuffer *new_buffer_of_another_format() {
  return new_buffer_with_meta(GST_VIDEO_FORMAT_NV12, 64, 36);
}
GstBuffer *new_buffer_of_a_smaller_size() {
  return new_buffer_with_meta(GST_VIDEO_FORMAT_I420, 64, 35);
}

struct BadBuffer {
  const char *what;
  GstBuffer *(*make)();
};

constexpr BadBuffer kBadBuffers[] = {
    {"a buffer without memory", gst_buffer_new},
    {"a buffer that is a byte too short", new_short_buffer},
    {"memory that cannot be mapped", new_closed_buffer},
    {"a meta that tells another format", new_buffer_of_another_format},
    {"a meta that tells a smaller size", new_buffer_of_a_smaller_size},
};

// The pad templates admit this size, but no frame of it can be described.
GstCaps *new_caps_without_info() {
  return gst_caps_from_string(
      "video/x-raw, format=(string)I420, width=(int)2147483647, height=(int)2147483647, "
      "framerate=(fraction)30/1");
}

// An element that plays, with pads and a bus of its own.
class LoneElement {
 public:
  explicit LoneElement(const char *name, bool guarded = false)
      : element_(new_element(name)), bus_(gst_bus_new()) {
    gst_element_set_bus(element_.get(), bus_.get());
    if (guarded) video_guard_add(element_.get());
    gst_element_set_state(element_.get(), GST_STATE_PLAYING);
    line_ = std::make_unique<PadLine>(element_.get(), small_info());
  }
  ~LoneElement() {
    line_.reset();
    gst_element_set_state(element_.get(), GST_STATE_NULL);
    gst_element_set_bus(element_.get(), nullptr);
  }
  LoneElement(const LoneElement &) = delete;
  LoneElement &operator=(const LoneElement &) = delete;

  GstElement *get() { return element_.get(); }
  PadLine &line() { return *line_; }

  void send_caps(GstCaps *caps) {
    const CapsPtr owned(caps);
    const ObjectPtr<GstPad> sink(gst_element_get_static_pad(get(), "sink"));
    gst_pad_send_event(sink.get(), gst_event_new_caps(caps));
  }
  // Takes a message of this type off the bus; whether there was one.
  bool said(GstMessageType type) {
    GstMessage *message = gst_bus_pop_filtered(bus_.get(), type);
    if (message == nullptr) return false;
    gst_message_unref(message);
    return true;
  }

 private:
  ObjectPtr<GstElement> element_;
  ObjectPtr<GstBus> bus_;
  std::unique_ptr<PadLine> line_;
};

// While it lives, critical warnings of GLib's about what is tried here do not end the process.
class CriticalWarningsPass {
 public:
  CriticalWarningsPass()
      : before_(g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK))) {}
  ~CriticalWarningsPass() { g_log_set_always_fatal(before_); }
  CriticalWarningsPass(const CriticalWarningsPass &) = delete;
  CriticalWarningsPass &operator=(const CriticalWarningsPass &) = delete;

 private:
  GLogLevelFlags before_;
};

class AbortingElement : public ForEachElement {};

TEST_P(AbortingElement, ABufferThatCannotBeMappedDeathTest) {
  for (const BadBuffer &bad : kBadBuffers) {
    const auto push = [&] {
      const CriticalWarningsPass pass;
      LoneElement element(GetParam());
      element.line().push(bad.make());
    };
    EXPECT_DEATH(push(), "assertion failed: \\(ret\\)") << bad.what;
  }
}

TEST_P(AbortingElement, CapsThatCannotBeReadDeathTest) {
  const auto send = [&] { LoneElement(GetParam()).send_caps(new_caps_without_info()); };
  EXPECT_DEATH(send(), "assertion failed: \\(ret\\)");
}

TEST_P(AbortingElement, AFrameAheadOfAnyCapsDeathTest) {
  const auto push = [&] {
    const CriticalWarningsPass pass;
    const ObjectPtr<GstElement> element = new_element(GetParam());
    gst_element_set_state(element.get(), GST_STATE_PLAYING);
    const ObjectPtr<GstPad> sink(gst_element_get_static_pad(element.get(), "sink"));
    gst_pad_chain(sink.get(), new_small_frame());
  };
  EXPECT_DEATH(push(), "assertion failed: \\(ret\\)");
}

INSTANTIATE_TEST_SUITE_P(Elements, AbortingElement,
                         testing::Values("noxpentracker", "noxvectorizer"), element_name);

// GStreamer's base class maps the buffer ahead of the element: what cannot be mapped passes unread.
TEST(NoxQrDecOnBadInput, WarnsAndPassesItOn) {
  for (const BadBuffer &bad : kBadBuffers) {
    SCOPED_TRACE(bad.what);
    const CriticalWarningsPass pass;
    LoneElement element("noxqrdec");
    EXPECT_EQ(element.line().push(bad.make()), GST_FLOW_OK);
    EXPECT_TRUE(element.said(GST_MESSAGE_WARNING));
    EXPECT_EQ(element.line().push(new_small_frame()), GST_FLOW_OK);
    EXPECT_EQ(element.line().received(), 2);
  }
}

TEST(NoxQrDecOnBadInput, TakesNoCapsThatCannotBeRead) {
  LoneElement element("noxqrdec");
  element.send_caps(new_caps_without_info());
  EXPECT_EQ(element.line().push(new_small_frame()), GST_FLOW_NOT_NEGOTIATED);
  EXPECT_EQ(element.line().received(), 0);
}

TEST(NoxQrDecOnBadInput, TakesNoFrameAheadOfAnyCaps) {
  const ObjectPtr<GstElement> element = new_element("noxqrdec");
  gst_element_set_state(element.get(), GST_STATE_PLAYING);
  const ObjectPtr<GstPad> sink(gst_element_get_static_pad(element.get(), "sink"));
  gst_pad_send_event(sink.get(), gst_event_new_stream_start("no-caps"));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  gst_pad_send_event(sink.get(), gst_event_new_segment(&segment));
  EXPECT_EQ(gst_pad_chain(sink.get(), new_small_frame()), GST_FLOW_NOT_NEGOTIATED);
  gst_element_set_state(element.get(), GST_STATE_NULL);
}

using GuardedElement = ForEachElement;

TEST_P(GuardedElement, NeverSeesABadBuffer) {
  LoneElement element(GetParam(), true);
  int good = 0;
  for (const BadBuffer &bad : kBadBuffers) {
    SCOPED_TRACE(bad.what);
    EXPECT_EQ(element.line().push(bad.make()), GST_FLOW_OK);
    EXPECT_TRUE(element.said(GST_MESSAGE_ERROR));
    EXPECT_EQ(element.line().push(new_small_frame()), GST_FLOW_OK);
    EXPECT_FALSE(element.said(GST_MESSAGE_ERROR));
    EXPECT_EQ(element.line().received(), ++good) << "the good ones, and no other";
  }
}

TEST_P(GuardedElement, NeverSeesCapsThatCannotBeReadNorTheirBuffers) {
  LoneElement element(GetParam(), true);
  element.send_caps(new_caps_without_info());
  EXPECT_TRUE(element.said(GST_MESSAGE_ERROR));
  EXPECT_EQ(element.line().push(new_small_frame()), GST_FLOW_OK);
  EXPECT_TRUE(element.said(GST_MESSAGE_ERROR));
  EXPECT_EQ(element.line().received(), 0);
  const GstVideoInfo info = small_info();
  element.send_caps(gst_video_info_to_caps(&info));
  EXPECT_EQ(element.line().push(new_small_frame()), GST_FLOW_OK);
  EXPECT_FALSE(element.said(GST_MESSAGE_ERROR));
  EXPECT_EQ(element.line().received(), 1);
}

TEST_P(GuardedElement, SeesEveryGoodFrameAsItIs) {
  LoneElement element(GetParam(), true);
  for (int i = 1; i <= 10; ++i) {
    EXPECT_EQ(element.line().push(new_small_frame()), GST_FLOW_OK);
    EXPECT_EQ(element.line().push(new_padded_buffer(small_info(), 7)), GST_FLOW_OK);
    EXPECT_EQ(element.line().received(), 2 * i);
  }
  EXPECT_FALSE(element.said(GST_MESSAGE_ERROR));
}

INSTANTIATE_TEST_SUITE_P(Elements, GuardedElement, testing::ValuesIn(kElementNames), element_name);

}  // namespace
}  // namespace nox::test
