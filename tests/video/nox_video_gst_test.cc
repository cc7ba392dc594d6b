#include "video/nox_video_gst.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/harness.h"
#include "support/video_buffer.h"

namespace nox::test {
namespace {

// A mapped buffer and the record made of it.
class Mapped {
 public:
  Mapped(const GstVideoInfo &info, GstBuffer *buffer) : buffer_(buffer) {
    mapped_ = gst_video_frame_map(&gst_frame, &info, buffer, GST_MAP_READ);
    std::memset(&frame, 0x5A, sizeof(frame));  // what a record held before is nothing to keep
    nox_video_frame_from_gst_video_frame(&frame, &gst_frame);
  }
  ~Mapped() {
    if (mapped_) gst_video_frame_unmap(&gst_frame);
  }
  Mapped(const Mapped &) = delete;
  Mapped &operator=(const Mapped &) = delete;

  GstVideoFrame gst_frame{};
  NoxVideoFrame frame{};

 private:
  BufferPtr buffer_;
  bool mapped_;
};

void expect_planes_of_gstreamer(const Mapped &mapped) {
  for (int p = 0; p < mapped.frame.n_planes; ++p) {
    EXPECT_EQ(mapped.frame.planes[p], GST_VIDEO_FRAME_PLANE_DATA(&mapped.gst_frame, p));
    EXPECT_EQ(mapped.frame.strides[p], GST_VIDEO_FRAME_PLANE_STRIDE(&mapped.gst_frame, p));
  }
  for (int p = mapped.frame.n_planes; p < 4; ++p) {
    EXPECT_EQ(mapped.frame.planes[p], nullptr);
    EXPECT_EQ(mapped.frame.strides[p], 0);
  }
}

TEST(NoxVideoGst, PointsIntoAnI420Frame) {
  const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_I420, 101, 51);
  const Mapped mapped(info, new_video_buffer(info));
  EXPECT_EQ(mapped.frame.format & ~0x3U, 0x100U);
  EXPECT_EQ(mapped.frame.width, 101);
  EXPECT_EQ(mapped.frame.height, 51);
  ASSERT_EQ(mapped.frame.n_planes, 3);
  expect_planes_of_gstreamer(mapped);
  EXPECT_EQ(mapped.frame.plane_widths[0], 101);
  EXPECT_EQ(mapped.frame.plane_heights[0], 51);
  for (int p = 1; p < 3; ++p) {
    EXPECT_EQ(mapped.frame.plane_widths[p], 51) << "rounded up, as GStreamer stores it";
    EXPECT_EQ(mapped.frame.plane_heights[p], 26);
  }
}

TEST(NoxVideoGst, PointsIntoAnA420Frame) {
  const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_A420, 64, 48);
  const Mapped mapped(info, new_video_buffer(info));
  EXPECT_EQ(mapped.frame.format & ~0x3U, 0x180U);
  ASSERT_EQ(mapped.frame.n_planes, 4);
  expect_planes_of_gstreamer(mapped);
  EXPECT_EQ(mapped.frame.plane_widths[3], 64);
  EXPECT_EQ(mapped.frame.plane_heights[3], 48);
}

TEST(NoxVideoGst, FollowsTheStridesOfAVideoMeta) {
  const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_I420, 30, 20);
  const Mapped mapped(info, new_padded_buffer(info, 17));
  expect_planes_of_gstreamer(mapped);
  EXPECT_EQ(mapped.frame.strides[0], GST_VIDEO_INFO_PLANE_STRIDE(&info, 0) + 17);
  EXPECT_EQ(mapped.frame.plane_widths[0], 30);
}

TEST(NoxVideoGst, TakesRangeAndMatrixFromTheColorimetry) {
  const struct {
    GstVideoColorRange range;
    GstVideoColorMatrix matrix;
    std::uint32_t bits;
  } rows[] = {
      {GST_VIDEO_COLOR_RANGE_0_255, GST_VIDEO_COLOR_MATRIX_BT601, 0},
      {GST_VIDEO_COLOR_RANGE_16_235, GST_VIDEO_COLOR_MATRIX_BT601, 1},
      {GST_VIDEO_COLOR_RANGE_0_255, GST_VIDEO_COLOR_MATRIX_BT709, 2},
      {GST_VIDEO_COLOR_RANGE_16_235, GST_VIDEO_COLOR_MATRIX_BT709, 3},
      {GST_VIDEO_COLOR_RANGE_UNKNOWN, GST_VIDEO_COLOR_MATRIX_UNKNOWN, 0},
  };
  const struct {
    GstVideoFormat format;
    std::uint32_t code;
  } formats[] = {{GST_VIDEO_FORMAT_I420, 0x100},
                 {GST_VIDEO_FORMAT_A420, 0x180},
                 {GST_VIDEO_FORMAT_GRAY8, 0x400}};
  for (const auto &format : formats) {
    for (const auto &row : rows) {
      GstVideoInfo info = video_info(format.format, 16, 16);
      info.colorimetry.range = row.range;
      info.colorimetry.matrix = row.matrix;
      const Mapped mapped(info, new_video_buffer(info));
      EXPECT_EQ(mapped.frame.format, format.code | row.bits);
    }
  }
}

TEST(NoxVideoGst, KnowsThePackedFormats) {
  const struct {
    GstVideoFormat format;
    std::uint32_t code;
  } rows[] = {{GST_VIDEO_FORMAT_RGB, 0x200},  {GST_VIDEO_FORMAT_RGBx, 0x201},
              {GST_VIDEO_FORMAT_RGBA, 0x202}, {GST_VIDEO_FORMAT_BGR, 0x203},
              {GST_VIDEO_FORMAT_BGRx, 0x204}, {GST_VIDEO_FORMAT_BGRA, 0x205},
              {GST_VIDEO_FORMAT_NV12, 0}};
  for (const auto &row : rows) {
    const GstVideoInfo info = video_info(row.format, 20, 10);
    const Mapped mapped(info, new_video_buffer(info));
    EXPECT_EQ(mapped.frame.format, row.code);
    expect_planes_of_gstreamer(mapped);
  }
}

}  // namespace
}  // namespace nox::test
