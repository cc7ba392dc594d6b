#include "scaler/plane_filter.h"

#include <utility>

namespace nox::scaler {
namespace {

constexpr std::int32_t kSlots = 8;  // rows of pairs kept: at least kMaxPairs, and a power of two

}  // namespace

std::optional<PlaneFilter> make_plane_filter(const FilterCoefficients &coefficients,
                                             const AxisPositions &columns,
                                             const AxisPositions &rows) {
  const FilterKernels &kernels = filter_kernels();
  std::optional<ColumnPlan> column_plan = plan_columns(coefficients, columns, kernels.shape);
  std::optional<std::vector<RowStep>> row_plan = plan_rows(coefficients, rows);
  if (!column_plan || !row_plan) return std::nullopt;
  const bool short_filter = coefficients.taps == 4;
  PlaneFilter filter = {
      .filter_rows = short_filter ? kernels.filter_rows_4_taps : kernels.filter_rows_8_taps,
      .merge_rows = short_filter ? kernels.merge_rows_4_taps : kernels.merge_rows_8_taps,
      .columns = std::move(*column_plan),
      .rows = std::move(*row_plan),
      .last_row = rows.in_count - 1,
      .pair_stride = 0,
      .pairs = {},
  };
  const std::size_t steps = (filter.columns.out_count + kMergeStep - 1) / kMergeStep;
  filter.pair_stride = steps * kMergeStep;
  filter.pairs =
      make_aligned_bytes(kNoxAlignment, kSlots * filter.pair_stride * sizeof(std::int32_t));
  return filter;
}

void run_plane_filter(PlaneFilter &filter, ReducedRows &src, const DestinationPlane &dst) {
  const auto slot = [&filter](std::int32_t pair) {
    return reinterpret_cast<std::int32_t *>(filter.pairs.get()) +
           static_cast<std::size_t>(pair % kSlots) * filter.pair_stride;
  };
  // Output rows go down the picture, so the pairs that are there are always the latest ones.
  std::int32_t next_pair = 0;
  for (std::int32_t y = 0; y < dst.size.height; ++y) {
    const RowStep &step = filter.rows[static_cast<std::size_t>(y)];
    const std::int32_t *pairs[kMaxPairs];
    for (std::int32_t i = 0; i < step.count; ++i) {
      const std::int32_t pair = step.first_pair + i;
      pairs[i] = slot(pair);
      if (pair < next_pair) continue;
      // Below the last row the weight is 0, and any row will do.
      const std::uint8_t *upper = src.row(2 * pair, 0);
      const std::uint8_t *lower = 2 * pair < filter.last_row ? src.row(2 * pair + 1, 1) : upper;
      src.prefetch.advance(0);  // spread over the passes
      filter.filter_rows(filter.columns, upper, lower, slot(pair));
      next_pair = pair + 1;
    }
    src.prefetch.catch_up();
    filter.merge_rows(step, pairs, filter.columns.out_count, dst.row(y));
  }
}

}  // namespace nox::scaler
