// Which source samples and which phase each output column and row takes.
#ifndef SCALER_FILTER_POSITIONS_H_
#define SCALER_FILTER_POSITIONS_H_

#include <cstdint>
#include <vector>

#include "scaler/scaler.h"

namespace nox::scaler {

// One axis. Output x weighs the samples indices[x * taps] ... indices[x * taps + taps - 1] with the
// taps of phases[x]. The indices never decrease along x or along the taps, except where a picture
// side beyond 65536 samples wraps round: they are kept modulo 65536.
struct AxisPositions {
  std::int32_t in_count;   // samples along the axis; every index is below it
  std::int32_t out_count;  // 0 where there is no sample to take
  std::int32_t taps;
  std::vector<std::uint16_t> indices;
  std::vector<std::uint8_t> phases;  // zeros behind the last, up to whole vectors
};

// For the full-size planes, and for the planes of half the size both ways that 4:2:0 pictures have.
struct PositionTables {
  AxisPositions columns;
  AxisPositions rows;
  AxisPositions half_columns;
  AxisPositions half_rows;
};

// Pixel centres are aligned: output x lies at source position (x + 0.5) * in / out - 0.5. Indices
// beyond the border take the sample on it. Half-size planes have the ratio of the full ones and
// half their samples, truncated, on both sides.
PositionTables make_position_tables(ScalerSize in, ScalerSize out, std::int32_t taps);

}  // namespace nox::scaler

#endif  // SCALER_FILTER_POSITIONS_H_
