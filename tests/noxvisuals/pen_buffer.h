// Video buffers that show a pen.
#ifndef NOXVISUALS_PEN_BUFFER_H_
#define NOXVISUALS_PEN_BUFFER_H_

#include <gst/video/video.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "video/nox_video_frame.h"
#include "video/nox_video_gst.h"

namespace nox::test {

// A bright spot in the middle of a coloured square, at fractions of the picture from the top left.
struct Pen {
  double x;
  double y;
  bool pressed;
};

inline void fill_square(NoxVideoFrame *frame, int plane, const Pen &pen, double side,
                        std::uint8_t value) {
  const int width = frame->plane_widths[plane];
  const int height = frame->plane_heights[plane];
  const int left = std::max(0, static_cast<int>((pen.x - side / 2) * width));
  const int top = std::max(0, static_cast<int>((pen.y - side / 2) * height));
  const int right = std::min(width, static_cast<int>((pen.x + side / 2) * width));
  const int bottom = std::min(height, static_cast<int>((pen.y + side / 2) * height));
  for (int y = top; y < bottom; ++y) {
    std::uint8_t *row =
        frame->planes[plane] + static_cast<std::ptrdiff_t>(y) * frame->strides[plane];
    std::fill(row + left, row + std::max(left, right), value);
  }
}

// Makes the buffer dark and without colour, and draws the pen if there is one.
inline void draw_pen(GstBuffer *buffer, const GstVideoInfo &info, const std::optional<Pen> &pen) {
  GstVideoFrame mapped;
  gst_video_frame_map(&mapped, &info, buffer, GST_MAP_WRITE);
  NoxVideoFrame frame;
  nox_video_frame_from_gst_video_frame(&frame, &mapped);
  for (int p = 0; p < frame.n_planes; ++p) {
    fill_square(&frame, p, {0.5, 0.5, false}, 2.0, p == 0 ? 40 : 128);
  }
  if (pen) {
    fill_square(&frame, 0, *pen, 0.03, 250);
    fill_square(&frame, pen->pressed ? 2 : 1, *pen, 0.12, 230);
  }
  gst_video_frame_unmap(&mapped);
}

}  // namespace nox::test

#endif  // NOXVISUALS_PEN_BUFFER_H_
