#include "nox-visuals/stream/swapped_chroma.h"

#include <gst/check/gstharness.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include "nox-visuals/gst_pointers.h"

namespace {

using nox::app::GstPointer;
using nox::app::swap_chroma;

constexpr gsize kSize = 16 * 16 * 3 / 2;

// Luma 0, then U 1, then V 2 as the caps lay them out.
GstBuffer *planes() {
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, kSize, nullptr);
  gst_buffer_memset(buffer, 0, 0, 256);
  gst_buffer_memset(buffer, 256, 1, 64);
  gst_buffer_memset(buffer, 320, 2, 64);
  return buffer;
}

class SwappedChroma : public testing::Test {
 protected:
  SwappedChroma() : harness_(gst_harness_new("identity")) {
    gst_harness_set_src_caps_str(harness_, kCaps);
    const GstPointer<GstPad> sink(gst_element_get_static_pad(harness_->element, "sink"));
    swap_chroma(sink.get());
  }
  ~SwappedChroma() override { gst_harness_teardown(harness_); }

  // The first sample of each plane of what comes out.
  void expect_swapped(GstBuffer *in) {
    GstBuffer *out = gst_harness_push_and_pull(harness_, in);
    ASSERT_NE(out, nullptr);
    GstVideoInfo info;
    const GstPointer<GstCaps> caps(gst_caps_from_string(kCaps));
    gst_video_info_from_caps(&info, caps.get());
    GstVideoFrame frame;
    ASSERT_TRUE(gst_video_frame_map(&frame, &info, out, GST_MAP_READ));
    for (int plane = 0; plane < 3; ++plane) {
      const int expected[] = {0, 2, 1};
      EXPECT_EQ(*static_cast<guint8 *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane)), expected[plane]);
    }
    gst_video_frame_unmap(&frame);
    gst_buffer_unref(out);
  }

  static constexpr const char *kCaps = "video/x-raw,format=I420,width=16,height=16,framerate=30/1";
  GstHarness *harness_;
};

TEST_F(SwappedChroma, PlanesTradePlaces) {
  expect_swapped(planes());
}

TEST_F(SwappedChroma, ABufferWithARecordOfItsPlanes) {
  GstBuffer *buffer = planes();
  gst_buffer_add_video_meta(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_I420, 16, 16);
  expect_swapped(buffer);
}

TEST_F(SwappedChroma, WhoElseHoldsTheBufferSeesItAsItWas) {
  GstBuffer *buffer = planes();
  gst_buffer_add_video_meta(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_I420, 16, 16);
  gst_buffer_ref(buffer);
  expect_swapped(buffer);
  EXPECT_EQ(gst_buffer_get_video_meta(buffer)->offset[1], 256U);
  gst_buffer_unref(buffer);
}

TEST_F(SwappedChroma, NoSampleIsCopied) {
  GstBuffer *buffer = planes();
  gst_buffer_ref(buffer);
  GstBuffer *out = gst_harness_push_and_pull(harness_, buffer);
  EXPECT_EQ(gst_buffer_peek_memory(out, 0), gst_buffer_peek_memory(buffer, 0));
  gst_buffer_unref(out);
  gst_buffer_unref(buffer);
}

}  // namespace
