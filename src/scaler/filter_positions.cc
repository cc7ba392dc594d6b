#include "scaler/filter_positions.h"

#include <algorithm>

#include "scaler/filter_coefficients.h"

namespace nox::scaler {
namespace {

struct Position {
  std::int64_t integer;
  std::uint8_t phase;
};

// The product is rounded to single precision and the offset is not: both are part of the result.
Position source_position(std::int32_t x, float ratio) {
  const float scaled = static_cast<float>(x) * ratio;
  const double position = static_cast<double>(scaled) + (static_cast<double>(ratio) - 1.0) * 0.5;
  auto integer = static_cast<std::int64_t>(position);
  if (position < 0.0) --integer;
  const double fraction = position - static_cast<double>(integer);
  auto phase = static_cast<std::int32_t>(fraction * kPhases + 0.5);
  if (phase == kPhases) {
    phase = 0;
    ++integer;
  }
  return {integer, static_cast<std::uint8_t>(phase)};
}

AxisPositions make_axis(float ratio, std::int32_t in_count, std::int32_t out_count,
                        std::int32_t taps) {
  AxisPositions axis = {};
  axis.in_count = in_count;
  axis.taps = taps;
  if (in_count <= 0 || out_count <= 0) return axis;
  axis.out_count = out_count;
  const auto count = static_cast<std::size_t>(out_count);
  axis.indices.resize(count * static_cast<std::size_t>(taps));
  axis.phases.resize((count & ~std::size_t{15}) + 32);
  std::uint16_t *index = axis.indices.data();
  for (std::int32_t x = 0; x < out_count; ++x) {
    const Position position = source_position(x, ratio);
    axis.phases[static_cast<std::size_t>(x)] = position.phase;
    const std::int64_t first = position.integer - (taps / 2 - 1);
    for (std::int32_t t = 0; t < taps; ++t) {
      const std::int64_t clamped = std::clamp<std::int64_t>(first + t, 0, in_count - 1);
      *index++ = static_cast<std::uint16_t>(clamped);
    }
  }
  return axis;
}

}  // namespace

PositionTables make_position_tables(ScalerSize in, ScalerSize out, std::int32_t taps) {
  const float x_ratio = static_cast<float>(in.width) / static_cast<float>(out.width);
  const float y_ratio = static_cast<float>(in.height) / static_cast<float>(out.height);
  return {
      .columns = make_axis(x_ratio, in.width, out.width, taps),
      .rows = make_axis(y_ratio, in.height, out.height, taps),
      .half_columns = make_axis(x_ratio, in.width / 2, out.width / 2, taps),
      .half_rows = make_axis(y_ratio, in.height / 2, out.height / 2, taps),
  };
}

}  // namespace nox::scaler
