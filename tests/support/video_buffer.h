// Video buffers for tests of elements, with plain or padded planes.
#ifndef SUPPORT_VIDEO_BUFFER_H_
#define SUPPORT_VIDEO_BUFFER_H_

#include <gst/video/video.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "video/nox_video_frame.h"
#include "video/nox_video_gst.h"

namespace nox::test {

inline GstVideoInfo video_info(GstVideoFormat format, int width, int height) {
  GstVideoInfo info;
  gst_video_info_set_format(&info, format, static_cast<guint>(width), static_cast<guint>(height));
  GST_VIDEO_INFO_FPS_N(&info) = 30;
  GST_VIDEO_INFO_FPS_D(&info) = 1;
  return info;
}

inline GstCaps *video_caps(GstVideoFormat format, int width, int height) {
  const GstVideoInfo info = video_info(format, width, height);
  return gst_video_info_to_caps(&info);
}

// A buffer with GStreamer's own strides for `info`; its bytes are 0.
inline GstBuffer *new_video_buffer(const GstVideoInfo &info) {
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&info), nullptr);
  gst_buffer_memset(buffer, 0, 0, GST_VIDEO_INFO_SIZE(&info));
  return buffer;
}

// A buffer whose rows are `padding` bytes longer than GStreamer would make them, told by a
// GstVideoMeta. Every byte, padding included, is 0.
inline GstBuffer *new_padded_buffer(const GstVideoInfo &info, int padding) {
  gsize offsets[GST_VIDEO_MAX_PLANES] = {};
  gint strides[GST_VIDEO_MAX_PLANES] = {};
  gsize size = 0;
  for (guint p = 0; p < GST_VIDEO_INFO_N_PLANES(&info); ++p) {
    offsets[p] = size;
    strides[p] = GST_VIDEO_INFO_PLANE_STRIDE(&info, p) + padding;
    size +=
        static_cast<gsize>(strides[p]) * static_cast<gsize>(GST_VIDEO_INFO_COMP_HEIGHT(&info, p));
  }
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, size, nullptr);
  gst_buffer_memset(buffer, 0, 0, size);
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info),
                                 static_cast<guint>(GST_VIDEO_INFO_WIDTH(&info)),
                                 static_cast<guint>(GST_VIDEO_INFO_HEIGHT(&info)),
                                 GST_VIDEO_INFO_N_PLANES(&info), offsets, strides);
  return buffer;
}

// Copies the visible samples of `picture` into the buffer; both have the format of `info`.
inline void write_picture(GstBuffer *buffer, const GstVideoInfo &info,
                          const NoxVideoFrame &picture) {
  GstVideoFrame mapped;
  gst_video_frame_map(&mapped, &info, buffer, GST_MAP_WRITE);
  NoxVideoFrame frame;
  nox_video_frame_from_gst_video_frame(&frame, &mapped);
  for (int p = 0; p < frame.n_planes; ++p) {
    const int width = std::min(frame.plane_widths[p], picture.plane_widths[p]);
    const int height = std::min(frame.plane_heights[p], picture.plane_heights[p]);
    for (int y = 0; y < height; ++y) {
      std::copy_n(picture.planes[p] + static_cast<std::ptrdiff_t>(y) * picture.strides[p], width,
                  frame.planes[p] + static_cast<std::ptrdiff_t>(y) * frame.strides[p]);
    }
  }
  gst_video_frame_unmap(&mapped);
}

// The visible samples, plane after plane, row after row: row padding has no meaning and is left
// out.
inline std::vector<std::uint8_t> visible_samples(GstBuffer *buffer, const GstVideoInfo &info) {
  std::vector<std::uint8_t> samples;
  GstVideoFrame mapped;
  if (gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ) == FALSE) return samples;
  NoxVideoFrame frame;
  nox_video_frame_from_gst_video_frame(&frame, &mapped);
  for (int p = 0; p < frame.n_planes; ++p) {
    for (int y = 0; y < frame.plane_heights[p]; ++y) {
      const std::uint8_t *row = frame.planes[p] + static_cast<std::ptrdiff_t>(y) * frame.strides[p];
      samples.insert(samples.end(), row, row + frame.plane_widths[p]);
    }
  }
  gst_video_frame_unmap(&mapped);
  return samples;
}

}  // namespace nox::test

#endif  // SUPPORT_VIDEO_BUFFER_H_
