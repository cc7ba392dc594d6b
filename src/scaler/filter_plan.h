// The tables of the vector filters: what a kernel loads for each group of columns, and how the rows
// of a picture are merged.
//
// The kernels filter two source rows at a time along the row and keep the two sums of a column as
// one "pair", two signed 16-bit words (the upper row in the low one). An output row is then a
// weighted sum of a few rows of pairs, which a 16-bit multiply-add does for both rows at once.
#ifndef SCALER_FILTER_PLAN_H_
#define SCALER_FILTER_PLAN_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "scaler/aligned_bytes.h"
#include "scaler/filter_coefficients.h"
#include "scaler/filter_positions.h"

namespace nox::scaler {

inline constexpr std::size_t kTapsPerQuad = 4;  // taps of one output that a kernel weighs at once
inline constexpr std::size_t kColumnStep = 16;  // tables are padded to whole vectors of columns
inline constexpr std::int32_t kMaxPairs = 5;    // that 8 rows can touch, when the first is odd

// How a kernel fetches samples: for a group of neighbouring outputs it loads one window of source
// bytes and picks each tap's sample from it.
struct FetchShape {
  std::size_t group_outputs;
  std::size_t window_bytes;
};

// For each tap of each output, four taps to an output, its place in the window of the output's
// group and its weight. Aligned to whole vectors; the padding weighs 0.
struct ColumnQuad {
  AlignedBytes picks;
  AlignedBytes weights;  // signed, in two's complement
};

struct ColumnPlan {
  std::size_t out_count;
  std::size_t padded_count;           // out_count rounded up to kColumnStep
  std::vector<std::int32_t> windows;  // for each group, the column where its window starts
  std::vector<ColumnQuad> quads;      // one for filters of 4 taps, two for 8
};

// One output row: pairs first_pair to first_pair + count - 1 with a packed pair of weights each.
struct RowStep {
  std::int32_t first_pair;
  std::int32_t count;
  std::int32_t weights[kMaxPairs];
};

// The plan of a picture's columns, or nothing when the vector filters cannot serve it: other
// lengths than 4 and 8, indices that wrap, rows shorter than a window, outputs so far apart that a
// window does not reach round its group.
std::optional<ColumnPlan> plan_columns(const FilterCoefficients &coefficients,
                                       const AxisPositions &columns, FetchShape shape);

// The same of its rows. Weights of a border row that is taken several times are added up.
std::optional<std::vector<RowStep>> plan_rows(const FilterCoefficients &coefficients,
                                              const AxisPositions &rows);

}  // namespace nox::scaler

#endif  // SCALER_FILTER_PLAN_H_
