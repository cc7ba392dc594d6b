// Erosion and dilation in two plain forms: pixel by pixel, as the contract of morphology.h reads,
// and strip by strip with lanes, as the contract came about.
#ifndef MASKS_MORPHOLOGY_PLAIN_H_
#define MASKS_MORPHOLOGY_PLAIN_H_

#include <cstdint>
#include <vector>

#include "masks/bitmask.h"

namespace nox::test {

struct Shape {
  std::int32_t width;
  std::int32_t height;
  std::vector<std::uint8_t> members;  // row-major, nonzero for a member
};

// Bits that one lane has for elements of `width` columns, 1 to 24.
std::int32_t lane_bits_plain(std::int32_t width);

// Bytes of each row that a pass over masks of mask_width pixels writes.
std::int32_t written_bytes_plain(std::int32_t mask_width, std::int32_t lane_bits);

void morph_plain(BitMask *dst, const BitMask *src, const Shape &shape, bool dilate);

// The same by 128-bit strips: each output bit comes from one lane, which collects one bit per
// column of the element and is tested as a signed number.
void morph_strips_plain(BitMask *dst, const BitMask *src, const Shape &shape, bool dilate);

}  // namespace nox::test

#endif  // MASKS_MORPHOLOGY_PLAIN_H_
