// The memory that the planes of a frame own.
#ifndef VIDEO_PLANE_MEMORY_H_
#define VIDEO_PLANE_MEMORY_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "video/nox_video_frame.h"

namespace nox::video {

// Bytes from `begin` up to `end`, counted from a plane's first sample.
struct PlaneExtent {
  std::int64_t begin;  // below 0 where rows run upwards
  std::int64_t end;
};

// What a plane of `height` rows owns: stride bytes in each of them, padding included, and its
// `width` samples where a stride is less than that.
inline PlaneExtent plane_extent(std::int64_t stride, std::int32_t width, std::int32_t height) {
  if (height < 1) return {0, 0};
  const std::int64_t last = stride * (height - 1);
  const std::int64_t row = std::max<std::int64_t>(std::abs(stride), width);
  return {std::min<std::int64_t>(last, 0), std::max<std::int64_t>(last, 0) + row};
}

// The same of plane `p`; nothing where there is none.
inline PlaneExtent plane_extent(const NoxVideoFrame &frame, int p) {
  if (frame.planes[p] == nullptr) return {0, 0};
  return plane_extent(frame.strides[p], frame.plane_widths[p], frame.plane_heights[p]);
}

// How many of the `count` bytes from sample (x, y) of plane `p` on the plane owns: none of a row
// that begins in front of it. Neither x nor y is below 0.
inline std::int64_t samples_in_plane(const NoxVideoFrame &frame, int p, std::int64_t x,
                                     std::int64_t y, std::int64_t count) {
  const PlaneExtent extent = plane_extent(frame, p);
  const std::int64_t row = y * frame.strides[p];
  return row < extent.begin ? 0 : std::clamp<std::int64_t>(extent.end - (row + x), 0, count);
}

// Sample (x, y) of plane `p`.
inline std::uint8_t *plane_sample(const NoxVideoFrame &frame, int p, std::int64_t x,
                                  std::int64_t y) {
  return frame.planes[p] + (y * frame.strides[p] + x);
}

}  // namespace nox::video

#endif  // VIDEO_PLANE_MEMORY_H_
