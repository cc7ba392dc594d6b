// The mask operations one bit at a time, for comparison.
#ifndef MASKS_BITMASK_PLAIN_H_
#define MASKS_BITMASK_PLAIN_H_

#include <cstddef>
#include <cstdint>

#include "masks/bitmask.h"

namespace nox::test {

// Bit x of the row that starts at `row`.
int bit_plain(const std::uint8_t *row, std::int32_t x);
void set_bit_plain(std::uint8_t *row, std::int32_t x, int value);

// As bitmask_threshold; `readable` is the count of the plane's bytes from `plane` on, for planes
// with a stride of 0 or more. Bits of samples behind them are 0.
void threshold_plain(BitMask *dst, const std::uint8_t *plane, std::int32_t stride,
                     std::uint32_t threshold, std::ptrdiff_t readable);
void threshold_below_plain(BitMask *dst, const std::uint8_t *plane, std::int32_t stride,
                           std::uint32_t threshold, std::ptrdiff_t readable);

void or_plain(BitMask *dst, const BitMask *a, const BitMask *b);
void and_plain(BitMask *dst, const BitMask *a, const BitMask *b);
void and_not_plain(BitMask *dst, const BitMask *a, const BitMask *b);

}  // namespace nox::test

#endif  // MASKS_BITMASK_PLAIN_H_
