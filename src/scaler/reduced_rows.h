// The rows that a filter reads: those of the source plane, or box means of it made as they are
// needed, so that the smaller picture never leaves the nearest cache.
#ifndef SCALER_REDUCED_ROWS_H_
#define SCALER_REDUCED_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "scaler/box_kernels.h"
#include "scaler/frame_planes.h"
#include "scaler/plane_prefetch.h"

namespace nox::scaler {

inline constexpr std::int32_t kReducedLines = 2;  // rows that a filter reads at a time

struct ReducedRows {
  SourcePlane plane;
  ReduceRow reduce_row;
  std::int32_t halvings;
  std::size_t width;    // samples of a reduced row
  std::uint8_t *lines;  // kReducedLines rows
  std::size_t line_stride;
  PlanePrefetch prefetch;

  // Row y of the reduced picture, held in `line` until that line's next use.
  const std::uint8_t *row(std::int32_t y, std::int32_t line) {
    prefetch.advance(1 << halvings);
    if (halvings == 0) return plane.row(y);
    std::uint8_t *out = lines + static_cast<std::size_t>(line) * line_stride;
    reduce_row(plane.row(y << halvings), plane.stride, width, out);
    return out;
  }
};

}  // namespace nox::scaler

#endif  // SCALER_REDUCED_ROWS_H_
