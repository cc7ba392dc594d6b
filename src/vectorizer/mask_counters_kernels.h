// One frame's step of a row band of bit-sliced counters.
#ifndef VECTORIZER_MASK_COUNTERS_KERNELS_H_
#define VECTORIZER_MASK_COUNTERS_KERNELS_H_

#include <bit>
#include <cstdint>

#include "vectorizer/bit_rows.h"

namespace nox::vectorizer {

// Bit-planes of a counter from 0 to `limit`.
inline constexpr int counter_planes(std::int32_t limit) {
  return std::bit_width(static_cast<std::uint32_t>(limit));
}

// Both walk bits.count rows of counters from `planes` on: a row is counter_planes(limit) bit-planes
// of bits.words words each, the lowest bit first, rows one behind the other. 1 <= limit.

// Run lengths. Each counter goes up by one where its bit is set, and stays at `limit`; it falls to
// 0 where its bit is not set. Then the bit becomes whether the counter is at `limit`.
void count_runs(std::uint64_t *planes, std::int32_t limit, const BitRows &bits);

// Holds. Each counter goes to `limit` where its bit is set, and elsewhere down by one until 0. Then
// the bit becomes whether the counter is above 0.
void count_holds(std::uint64_t *planes, std::int32_t limit, const BitRows &bits);

}  // namespace nox::vectorizer

#endif  // VECTORIZER_MASK_COUNTERS_KERNELS_H_
