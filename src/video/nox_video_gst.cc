#include "video/nox_video_gst.h"

namespace {

std::uint32_t colorimetry_bits(const GstVideoColorimetry &colorimetry) {
  std::uint32_t bits = 0;
  if (colorimetry.range == GST_VIDEO_COLOR_RANGE_16_235) bits |= kNoxFormatStudioRange;
  if (colorimetry.matrix == GST_VIDEO_COLOR_MATRIX_BT709) bits |= kNoxFormatBt709;
  return bits;
}

std::uint32_t format_code(const GstVideoInfo &info) {
  switch (GST_VIDEO_INFO_FORMAT(&info)) {
    case GST_VIDEO_FORMAT_I420:
      return kNoxFormatI420 | colorimetry_bits(info.colorimetry);
    case GST_VIDEO_FORMAT_A420:
      return kNoxFormatA420 | colorimetry_bits(info.colorimetry);
    case GST_VIDEO_FORMAT_GRAY8:
      return kNoxFormatGray | colorimetry_bits(info.colorimetry);
    case GST_VIDEO_FORMAT_RGB:
      return kNoxFormatRgb;
    case GST_VIDEO_FORMAT_RGBx:
      return kNoxFormatRgbx;
    case GST_VIDEO_FORMAT_RGBA:
      return kNoxFormatRgba;
    case GST_VIDEO_FORMAT_BGR:
      return kNoxFormatBgr;
    case GST_VIDEO_FORMAT_BGRx:
      return kNoxFormatBgrx;
    case GST_VIDEO_FORMAT_BGRA:
      return kNoxFormatBgra;
    default:
      return 0;
  }
}

}  // namespace

void nox_video_frame_from_gst_video_frame(NoxVideoFrame *frame, const GstVideoFrame *gst_frame) {
  *frame = NoxVideoFrame{};
  frame->format = format_code(gst_frame->info);
  frame->width = GST_VIDEO_FRAME_WIDTH(gst_frame);
  frame->height = GST_VIDEO_FRAME_HEIGHT(gst_frame);
  frame->n_planes = static_cast<std::int32_t>(GST_VIDEO_FRAME_N_PLANES(gst_frame));
  // In every format with a code, plane p holds component p; packed planes hold them all, at full
  // size.
  for (int p = 0; p < frame->n_planes; ++p) {
    frame->planes[p] = static_cast<std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(gst_frame, p));
    frame->strides[p] = GST_VIDEO_FRAME_PLANE_STRIDE(gst_frame, p);
    frame->plane_widths[p] = GST_VIDEO_FRAME_COMP_WIDTH(gst_frame, p);
    frame->plane_heights[p] = GST_VIDEO_FRAME_COMP_HEIGHT(gst_frame, p);
  }
}
