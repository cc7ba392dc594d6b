// Vector forms of the mask operations, chosen for the machine at run time; one call does all rows.
#ifndef MASKS_BITMASK_KERNELS_H_
#define MASKS_BITMASK_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "masks/bitmask.h"

namespace nox::masks {

// Samples are compared, and bits written, in groups of this many pixels.
inline constexpr std::int32_t kThresholdGroup = 16;

struct SamplePlane {
  const std::uint8_t *samples;  // row 0
  std::ptrdiff_t stride;
  std::ptrdiff_t extent;  // bytes from `samples` on that may be read; covers the width of each row
};

// Sets the bits of `dst`, whose block is clear, whose sample is above (or below) `limit`.
void threshold_above(BitMask *dst, const SamplePlane &plane, std::uint8_t limit);
void threshold_under(BitMask *dst, const SamplePlane &plane, std::uint8_t limit);

// dst = a OR b, a AND b, a AND NOT b in the first ceil(width / 64) words of each row. `dst` may be
// `a` or `b`.
void or_words(BitMask *dst, const BitMask *a, const BitMask *b);
void and_words(BitMask *dst, const BitMask *a, const BitMask *b);
void and_not_words(BitMask *dst, const BitMask *a, const BitMask *b);

}  // namespace nox::masks

#endif  // MASKS_BITMASK_KERNELS_H_
