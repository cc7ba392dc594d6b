// Row functions of the box reductions, for the instruction set of this machine.
#ifndef SCALER_BOX_KERNELS_H_
#define SCALER_BOX_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace nox::scaler {

inline constexpr std::int32_t kMaxHalvings = 4;

// Makes one row of `out_width` samples from the f rows at `src`, `stride` bytes apart: each is the
// rounded mean of f by f samples. Reads f * out_width samples of each row and nothing else.
using ReduceRow = void (*)(const std::uint8_t *src, std::ptrdiff_t stride, std::size_t out_width,
                           std::uint8_t *out);

// reduce_row[h] has the factor f = 1 << h. Factor 1 copies. Factor 2 averages twice, rounding up
// each time: vertically and then horizontally, except in the out_width % 16 columns at the right
// end, horizontally and then vertically. The larger factors round once, halves up.
struct BoxKernels {
  ReduceRow reduce_row[kMaxHalvings + 1];
};

const BoxKernels &box_kernels();

// Any factor from 1 up: sums modulo 65536, half the block's size added, divided by the block's
// size. The wrap is deliberate; it sets in for factors above 16 only.
void reduce_row_by(std::int32_t factor, const std::uint8_t *src, std::ptrdiff_t stride,
                   std::size_t out_width, std::uint8_t *out);

}  // namespace nox::scaler

#endif  // SCALER_BOX_KERNELS_H_
