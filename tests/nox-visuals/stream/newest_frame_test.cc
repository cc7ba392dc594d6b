// The queue that keeps the newest frame, and its count of those that went.
#include "nox-visuals/stream/newest_frame.h"

#include <gst/check/gstharness.h>
#include <gtest/gtest.h>

namespace nox::app {
namespace {

class NewestFrameTest : public testing::Test {
 protected:
  NewestFrameTest() : harness_(gst_harness_new("queue")) {
    gst_harness_set_src_caps_str(harness_, "video/x-raw");
    keep_newest_only(harness_->element, &dropped_);
  }
  ~NewestFrameTest() override { gst_harness_teardown(harness_); }

  void push(GstClockTime pts) {
    GstBuffer *buffer = gst_buffer_new();
    GST_BUFFER_PTS(buffer) = pts;
    EXPECT_EQ(gst_harness_push(harness_, buffer), GST_FLOW_OK);
  }

  // Returns when the end has left the queue.
  void end() {
    EXPECT_TRUE(gst_harness_push_event(harness_, gst_event_new_eos()));
    for (bool ended = false; !ended;) {
      GstEvent *event = gst_harness_pull_event(harness_);
      ASSERT_NE(event, nullptr) << "no end";
      ended = GST_EVENT_TYPE(event) == GST_EVENT_EOS;
      gst_event_unref(event);
    }
  }

  GstHarness *harness_;
  std::atomic<std::uint64_t> dropped_ = 0;
};

GstPadProbeReturn wait_for_permission(GstPad * /*pad*/, GstPadProbeInfo * /*info*/, gpointer lock) {
  g_mutex_lock(static_cast<GMutex *>(lock));
  g_mutex_unlock(static_cast<GMutex *>(lock));
  return GST_PAD_PROBE_OK;
}

TEST_F(NewestFrameTest, TheLastOneIsKept) {
  GMutex busy;
  g_mutex_init(&busy);
  g_mutex_lock(&busy);
  gst_pad_add_probe(harness_->sinkpad, GST_PAD_PROBE_TYPE_BUFFER, wait_for_permission, &busy,
                    nullptr);
  push(0);
  // Once the first is looked at, the second waits alone.
  guint waiting = 1;
  while (waiting > 0) g_object_get(harness_->element, "current-level-buffers", &waiting, nullptr);
  for (GstClockTime pts = 1; pts < 6; ++pts) push(pts);
  g_mutex_unlock(&busy);
  end();
  EXPECT_EQ(gst_harness_buffers_received(harness_), 2U);
  EXPECT_EQ(dropped_, 4U);
  gst_buffer_unref(gst_harness_pull(harness_));
  GstBuffer *last = gst_harness_pull(harness_);
  EXPECT_EQ(GST_BUFFER_PTS(last), 5U);
  gst_buffer_unref(last);
  g_mutex_clear(&busy);
}

// The frame that a new one finds in the queue may leave before it is replaced.
TEST_F(NewestFrameTest, EveryFrameLeavesOrIsCounted) {
  constexpr std::uint64_t kFrames = 100'000;
  gst_harness_set_drop_buffers(harness_, TRUE);
  for (std::uint64_t i = 0; i < kFrames; ++i) push(i);
  end();
  EXPECT_GT(dropped_, 0U);
  EXPECT_EQ(gst_harness_buffers_received(harness_) + dropped_, kFrames);
}

}  // namespace
}  // namespace nox::app
