// One frame's step of a row band of bit-sliced counters.
#ifndef VECTORIZER_MASK_COUNTERS_KERNELS_H_
#define VECTORIZER_MASK_COUNTERS_KERNELS_H_

#include <bit>
#include <cstdint>

#include "vectorizer/bit_rows.h"

namespace nox::vectorizer {

// Bit-planes of a counter from 0 to `limit`.
inline constexpr int counter_planes(std::int32_t limit) {
  return static_cast<int>(std::bit_width(static_cast<std::uint32_t>(limit)));
}

// Steps bits.count rows of counters from `planes` on: a row is counter_planes(limit) bit-planes of
// bits.words words each, the lowest bit first, rows one behind the other. 1 <= limit.
//
// Each counter goes up by one where its bit is set, and stays at `limit`; it falls to 0 where its
// bit is not set. Then the bit becomes whether the counter is at `limit`. With `inverted` the bits
// are taken and given the other way round: 0 for set.
//
// `settled` has a byte for each block of kBlockWords words, row by row: nonzero only if all
// counters of the block are 0 or at the limit. As long as such a block gets the same bits it stays
// as it is, and of its planes only one is read.
void count_runs(std::uint64_t *planes, std::uint8_t *settled, std::int32_t limit, bool inverted,
                const BitRows &bits);

}  // namespace nox::vectorizer

#endif  // VECTORIZER_MASK_COUNTERS_KERNELS_H_
