#include "scaler/filter_plan.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace nox::scaler {
namespace {

constexpr std::int32_t kLargestUnwrapped = 65536;  // samples along an axis with indices of 16 bits

bool is_vector_length(std::int32_t taps) {
  return taps == 4 || taps == 8;
}

// The taps of one output with the indices that they weigh.
struct Weighted {
  std::array<std::int32_t, 8> index;
  std::array<std::int32_t, 8> weight;
};

Weighted weighted_taps(const FilterCoefficients &coefficients, const AxisPositions &axis,
                       std::size_t x) {
  const auto taps = static_cast<std::size_t>(axis.taps);
  const std::int32_t *fixed = coefficients.fixed_taps[axis.phases[x]];
  Weighted output = {};
  std::copy_n(axis.indices.data() + x * taps, taps, output.index.begin());
  std::copy_n(fixed, taps, output.weight.begin());
  return output;
}

// A weight of 128 does not fit a signed byte. It stands alone in its phase, so a neighbour that
// weighs nothing takes one part of it.
bool fit_signed_bytes(Weighted &output, std::size_t taps) {
  constexpr std::int32_t kLargest = std::numeric_limits<std::int8_t>::max();
  for (std::size_t t = 0; t < taps; ++t) {
    if (output.weight[t] != kLargest + 1) continue;
    const std::size_t neighbour = t ^ 1;
    if (output.weight[neighbour] != 0) return false;
    output.index[neighbour] = output.index[t];
    output.weight[neighbour] = 1;
    output.weight[t] = kLargest;
  }
  return std::all_of(output.weight.begin(), output.weight.end(), [](std::int32_t weight) {
    return weight >= std::numeric_limits<std::int8_t>::min() && weight <= kLargest;
  });
}

// The windows of all groups: each starts at the first sample of its first output, or as far left as
// keeps the window within the row.
std::vector<std::int32_t> place_windows(const AxisPositions &columns, std::size_t groups,
                                        FetchShape shape, std::int32_t last_start) {
  std::vector<std::int32_t> windows(groups);
  const auto outputs = static_cast<std::size_t>(columns.out_count);
  for (std::size_t x = 0; x < outputs; x += shape.group_outputs) {
    const std::int32_t first = columns.indices[x * static_cast<std::size_t>(columns.taps)];
    windows[x / shape.group_outputs] = std::min(first, last_start);
  }
  return windows;
}

// Fills the quad of the taps from first_tap on; false when some tap lies outside its window.
bool fill_quad(ColumnQuad &quad, const ColumnPlan &plan, const std::vector<Weighted> &outputs,
               std::size_t first_tap, FetchShape shape) {
  quad.picks = make_aligned_bytes(kNoxAlignment, plan.padded_count * kTapsPerQuad);
  quad.weights = make_aligned_bytes(kNoxAlignment, plan.padded_count * kTapsPerQuad);
  for (std::size_t x = 0; x < outputs.size(); ++x) {
    for (std::size_t t = 0; t < kTapsPerQuad; ++t) {
      const std::int32_t index = outputs[x].index[first_tap + t];
      const std::int32_t pick = index - plan.windows[x / shape.group_outputs];
      if (pick < 0 || pick >= static_cast<std::int32_t>(shape.window_bytes)) return false;
      quad.picks[x * kTapsPerQuad + t] = static_cast<std::uint8_t>(pick);
      quad.weights[x * kTapsPerQuad + t] =
          static_cast<std::uint8_t>(outputs[x].weight[first_tap + t]);
    }
  }
  return true;
}

}  // namespace

std::optional<ColumnPlan> plan_columns(const FilterCoefficients &coefficients,
                                       const AxisPositions &columns, FetchShape shape) {
  const auto taps = static_cast<std::size_t>(coefficients.taps);
  const std::int32_t last_start = columns.in_count - static_cast<std::int32_t>(shape.window_bytes);
  if (!is_vector_length(coefficients.taps) || last_start < 0) return std::nullopt;
  if (columns.in_count > kLargestUnwrapped) return std::nullopt;
  std::vector<Weighted> outputs;
  for (std::size_t x = 0; x < static_cast<std::size_t>(columns.out_count); ++x) {
    outputs.push_back(weighted_taps(coefficients, columns, x));
    if (!fit_signed_bytes(outputs.back(), taps)) return std::nullopt;
  }
  ColumnPlan plan = {};
  plan.out_count = outputs.size();
  plan.padded_count = (plan.out_count + kColumnStep - 1) / kColumnStep * kColumnStep;
  const std::size_t groups = plan.padded_count / shape.group_outputs;
  plan.windows = place_windows(columns, groups, shape, last_start);
  for (std::size_t tap = 0; tap < taps; tap += kTapsPerQuad) {
    ColumnQuad quad = {};
    if (!fill_quad(quad, plan, outputs, tap, shape)) return std::nullopt;
    plan.quads.push_back(std::move(quad));
  }
  return plan;
}

std::optional<std::vector<RowStep>> plan_rows(const FilterCoefficients &coefficients,
                                              const AxisPositions &rows) {
  if (!is_vector_length(coefficients.taps) || rows.in_count > kLargestUnwrapped) {
    return std::nullopt;
  }
  const auto taps = static_cast<std::size_t>(coefficients.taps);
  std::vector<RowStep> steps;
  for (std::size_t y = 0; y < static_cast<std::size_t>(rows.out_count); ++y) {
    const Weighted output = weighted_taps(coefficients, rows, y);
    std::int32_t words[2 * kMaxPairs] = {};
    RowStep step = {};
    step.first_pair = output.index[0] / 2;
    step.count = output.index[taps - 1] / 2 - step.first_pair + 1;
    for (std::size_t t = 0; t < taps; ++t) {
      words[output.index[t] - 2 * step.first_pair] += output.weight[t];
    }
    const std::int32_t *pair = words;
    for (std::int32_t i = 0; i < step.count; ++i, pair += 2) {
      // The upper row's weight in the low word, both in two's complement.
      const auto low = static_cast<std::uint16_t>(pair[0]);
      const auto high = static_cast<std::uint16_t>(pair[1]);
      step.weights[i] = static_cast<std::int32_t>(low | static_cast<std::uint32_t>(high) << 16);
    }
    steps.push_back(step);
  }
  return steps;
}

}  // namespace nox::scaler
