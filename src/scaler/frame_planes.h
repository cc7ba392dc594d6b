// One plane of a frame, as the scalers walk it.
#ifndef SCALER_FRAME_PLANES_H_
#define SCALER_FRAME_PLANES_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "scaler/scaler.h"
#include "video/nox_video_frame.h"

namespace nox::scaler {

struct SourcePlane {
  const std::uint8_t *data;
  std::ptrdiff_t stride;
  ScalerSize size;

  const std::uint8_t *row(std::int32_t y) const { return data + y * stride; }
};

struct DestinationPlane {
  std::uint8_t *data;
  std::ptrdiff_t stride;
  ScalerSize size;

  std::uint8_t *row(std::int32_t y) const { return data + y * stride; }
};

inline std::int32_t plane_count(const NoxVideoFrame &frame) {
  return std::min(frame.n_planes, 4);
}

inline SourcePlane source_plane(const NoxVideoFrame &frame, std::int32_t p) {
  return {frame.planes[p], frame.strides[p], {frame.plane_widths[p], frame.plane_heights[p]}};
}

inline DestinationPlane destination_plane(const NoxVideoFrame &frame, std::int32_t p) {
  return {frame.planes[p], frame.strides[p], {frame.plane_widths[p], frame.plane_heights[p]}};
}

// Whether there is a plane that has `factor` times the given size, not empty, both ways.
template <typename Plane>
bool holds(const Plane &plane, ScalerSize size, std::int32_t factor = 1) {
  return plane.data != nullptr && size.width > 0 && size.height > 0 &&
         plane.size.width >= static_cast<std::int64_t>(size.width) * factor &&
         plane.size.height >= static_cast<std::int64_t>(size.height) * factor;
}

}  // namespace nox::scaler

#endif  // SCALER_FRAME_PLANES_H_
