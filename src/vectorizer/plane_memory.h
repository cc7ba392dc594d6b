// How far the memory of a frame's plane is known to reach.
#ifndef VECTORIZER_PLANE_MEMORY_H_
#define VECTORIZER_PLANE_MEMORY_H_

#include <algorithm>
#include <cstdint>

#include "video/nox_video_frame.h"

namespace nox::vectorizer {

// Bytes of plane `p` up to and with the last sample of its last row. Padding behind that one may
// belong to somebody else. 0 for a plane that is not there and for rows that run upwards.
inline std::int64_t plane_bytes(const NoxVideoFrame &frame, int p) {
  if (frame.planes[p] == nullptr || frame.plane_heights[p] < 1 || frame.strides[p] < 0) return 0;
  return std::int64_t{frame.strides[p]} * (frame.plane_heights[p] - 1) + frame.plane_widths[p];
}

// How many of the `count` samples from (x, y) of plane `p` on, in memory order, the plane holds.
inline std::int64_t samples_in_plane(const NoxVideoFrame &frame, int p, std::int64_t x,
                                     std::int64_t y, std::int64_t count) {
  if (x < 0 || y < 0) return 0;
  const std::int64_t left = plane_bytes(frame, p) - (y * frame.strides[p] + x);
  return std::clamp<std::int64_t>(left, 0, count);
}

// Sample (x, y) of plane `p`.
inline std::uint8_t *plane_sample(const NoxVideoFrame &frame, int p, std::int64_t x,
                                  std::int64_t y) {
  return frame.planes[p] + (y * frame.strides[p] + x);
}

}  // namespace nox::vectorizer

#endif  // VECTORIZER_PLANE_MEMORY_H_
