// The two passes of the polyphase filters of 4 and 8 taps, for the instruction set of this machine.
#ifndef SCALER_FILTER_KERNELS_H_
#define SCALER_FILTER_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "scaler/filter_plan.h"

namespace nox::scaler {

inline constexpr std::size_t kMergeStep = 64;  // columns of the widest vectors of output samples

// Filters two source rows along the row into plan.padded_count pairs, 64-byte aligned. Reads only
// within the rows. Sums of 4 taps are saturated to 16 bits; those of 8 taps always fit.
using FilterRows = void (*)(const ColumnPlan &plan, const std::uint8_t *upper,
                            const std::uint8_t *lower, std::int32_t *pairs);

// Makes an output row of `width` samples from the rows of pairs that the step names, pairs[i] being
// row step.first_pair + i: the weighted sum, rounded, in whole samples, clamped to 0 to 255. The
// rows of pairs, 64-byte aligned, are read in multiples of kMergeStep.
using MergeRows = void (*)(const RowStep &step, const std::int32_t *const *pairs, std::size_t width,
                           std::uint8_t *out);

struct FilterKernels {
  FetchShape shape;  // of the column plans that filter_rows takes
  FilterRows filter_rows_4_taps;
  FilterRows filter_rows_8_taps;
  MergeRows merge_rows_4_taps;
  MergeRows merge_rows_8_taps;
};

const FilterKernels &filter_kernels();

}  // namespace nox::scaler

#endif  // SCALER_FILTER_KERNELS_H_
