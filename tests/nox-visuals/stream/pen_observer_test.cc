#include "nox-visuals/stream/pen_observer.h"

#include <gst/check/gstharness.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nox-visuals/gst_pointers.h"

namespace {

using nox::app::Counts;
using nox::app::Loss;
using nox::app::Observation;
using nox::app::Pen;
using nox::app::PenObserver;

// An element that passes everything on stands for the tracker: the test sends the events itself,
// ahead of the buffers, as the tracker does.
class PenObserverTest : public testing::Test {
 protected:
  PenObserverTest()
      : observer_(&counts_, [this](const Observation &it) { seen_.push_back(it); }),
        harness_(gst_harness_new("identity")) {
    gst_harness_set_src_caps_str(harness_, "video/x-raw");
    observer_.attach(harness_->element);
  }
  ~PenObserverTest() override { gst_harness_teardown(harness_); }

  void frame(GstClockTime pts) {
    GstBuffer *buffer = gst_buffer_new();
    GST_BUFFER_PTS(buffer) = pts;
    gst_harness_push(harness_, buffer);
  }

  void frame_with_pen(GstClockTime pts, bool pressed) {
    GstStructure *data =
        gst_structure_new("NoxTrackingData", "x", G_TYPE_FLOAT, 0.25, "y", G_TYPE_FLOAT, 0.5,
                          "pressed", G_TYPE_BOOLEAN, static_cast<gboolean>(pressed), nullptr);
    gst_harness_push_event(harness_, gst_event_new_custom(GST_EVENT_CUSTOM_DOWNSTREAM, data));
    frame(pts);
  }

  Counts counts_;
  std::vector<Observation> seen_;
  PenObserver observer_;
  GstHarness *harness_;
};

TEST_F(PenObserverTest, AnEventHasTheTimeOfTheBufferBehindIt) {
  frame(1);
  frame_with_pen(2, true);
  ASSERT_EQ(seen_.size(), 1U);
  const Pen &pen = std::get<Pen>(seen_[0]);
  EXPECT_EQ(pen.when.pts_ns, 2);
  EXPECT_FALSE(pen.when.unix_us.has_value());
  EXPECT_GT(pen.when.entered_ns, 0);
  EXPECT_TRUE(pen.pressed);
  EXPECT_EQ(pen.raw[0], 0.25F);
  EXPECT_EQ(pen.raw[1], 0.5F);
  EXPECT_EQ(counts_.frames, 2U);
  EXPECT_EQ(counts_.found, 1U);
}

TEST_F(PenObserverTest, TheFirstFrameWithoutThePenIsALoss) {
  frame_with_pen(1, true);
  frame(2);
  frame(3);
  frame_with_pen(4, false);
  frame(5);
  ASSERT_EQ(seen_.size(), 4U);
  EXPECT_EQ(std::get<Loss>(seen_[1]).when.pts_ns, 2);
  EXPECT_TRUE(std::get<Loss>(seen_[1]).pressed);
  EXPECT_FALSE(std::get<Loss>(seen_[3]).pressed);
  EXPECT_EQ(counts_.losses, 2U);
  EXPECT_EQ(counts_.losses_pressed, 1U);
}

TEST_F(PenObserverTest, APenGoesWithItsTracker) {
  frame_with_pen(1, true);
  observer_.detach();
  observer_.detach();
  ASSERT_EQ(seen_.size(), 2U);
  EXPECT_TRUE(std::get<Loss>(seen_[1]).pressed);
  EXPECT_EQ(counts_.losses, 1U);
}

TEST_F(PenObserverTest, WithoutATimeStampThereIsNone) {
  observer_.go_live();
  frame_with_pen(GST_CLOCK_TIME_NONE, false);
  EXPECT_FALSE(std::get<Pen>(seen_.at(0)).when.pts_ns.has_value());
  EXPECT_GT(std::get<Pen>(seen_.at(0)).when.unix_us.value(), 1'700'000'000'000'000);
}

TEST_F(PenObserverTest, OtherEventsAreNoPens) {
  GstStructure *data = gst_structure_new_empty("SomethingElse");
  gst_harness_push_event(harness_, gst_event_new_custom(GST_EVENT_CUSTOM_DOWNSTREAM, data));
  frame(1);
  EXPECT_TRUE(seen_.empty());
}

}  // namespace
