// Sets the pen tracker's navigation object from one thread while another streams frames that show
// the pen. Built with ThreadSanitizer, and with the element's own source inside, so that every
// access of the element's is watched.
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "noxvisuals/fake_navigation.h"
#include "noxvisuals/noxpentracker.h"
#include "noxvisuals/pen_buffer.h"
#include "support/harness.h"
#include "support/video_buffer.h"

namespace nox::test {
namespace {

constexpr int kFrames = 400;

class NavigationRace : public testing::Test {
 protected:
  NavigationRace() : harness_(nullptr) {
    gst_element_register(nullptr, "noxpentracker", GST_RANK_NONE, nox_pen_tracker_get_type());
    harness_ = new_harness("noxpentracker");
    gst_harness_set_drop_buffers(harness_.get(), TRUE);
    gst_harness_set_src_caps(harness_.get(), gst_video_info_to_caps(&info_));
  }

  void stream() {
    for (int i = 0; i < kFrames; ++i) {
      GstBuffer *buffer = new_video_buffer(info_);
      draw_pen(buffer, info_, Pen{0.5, 0.5, false});
      gst_harness_push(harness_.get(), buffer);
    }
    done_ = true;
  }

  void set(GObject *navigation) {
    g_object_set(harness_->element, "navigation-object", navigation, nullptr);
  }

  GstVideoInfo info_ = video_info(GST_VIDEO_FORMAT_I420, 64, 36);
  Harness harness_;
  std::atomic<bool> done_{false};
  NavigationRecord record_;
};

// Each object is dropped by its setter at once, so that only the property or a call in progress
// keeps it alive.
TEST_F(NavigationRace, ObjectsComeAndGoWhileFramesPass) {
  std::thread streaming([this] { stream(); });
  while (!done_) {
    GObject *navigation = fake_navigation_new(&record_);
    set(navigation);
    g_object_unref(navigation);
    set(nullptr);
  }
  streaming.join();
  set(nullptr);
  EXPECT_EQ(record_.alive, 0);
}

TEST_F(NavigationRace, ThePropertyIsReadWhileFramesPass) {
  GObject *navigation = fake_navigation_new(&record_);
  set(navigation);
  g_object_unref(navigation);
  std::thread streaming([this] { stream(); });
  while (!done_) {
    GObject *read = nullptr;
    g_object_get(harness_->element, "navigation-object", &read, nullptr);
    EXPECT_EQ(read, navigation);
    g_clear_object(&read);
  }
  streaming.join();
  EXPECT_EQ(record_.positions.size(), static_cast<std::size_t>(kFrames));
  set(nullptr);
  EXPECT_EQ(record_.alive, 0);
}

}  // namespace
}  // namespace nox::test
