// Erosion and dilation of masks by small binary shapes.
#ifndef MASKS_MORPHOLOGY_H_
#define MASKS_MORPHOLOGY_H_

#include <cstdint>

#include "masks/bitmask.h"

// Bytes that a row of a structuring element takes.
inline constexpr std::int32_t kElementRowBytes = 16;

// A binary shape of `width` columns and `height` rows around an anchor. Column c of a row is bit c
// of its pattern; a row's bytes hold the pattern repeated in lanes of lane_bits bits.
struct StructuringElement {
  std::uint8_t *rows;  // owned, kElementRowBytes for each row; aligned to kNoxAlignment
  std::int32_t width;
  std::int32_t height;
  std::int32_t anchor_x;    // width / 2
  std::int32_t anchor_y;    // height / 2
  std::int32_t lane_bytes;  // lane_bits / 8
  std::int32_t lane_bits;   // 8, 16 or 32 for widths to 8, 16 or 24; wider elements do no work
};

inline constexpr int kBitmaskErode = 0;
inline constexpr int kBitmaskDilate = 1;

// Makes an element of `height` rows of `width` bytes, row-major; a nonzero byte is a member. The
// bytes are not kept. Release it with structuring_element_free.
StructuringElement *structuring_element_new(const std::uint8_t *members, std::int32_t width,
                                            std::int32_t height);

// Releases the element; null is ignored.
void structuring_element_free(StructuringElement *element);

// Erodes or dilates `src` into `dst`, another mask of the same size. For each pixel (x, y) the
// sources are the pixels (x + c - anchor_x, y + r - anchor_y) of all members (c, r):
//
// - erosion sets the pixel when every source is 1 (and so always, when there is no member);
// - dilation sets it when at least one source is 1, with one deliberate exception: when the element
//   is exactly 8 or exactly 16 columns wide and a source of its last column is 1, the pixel is 0.
//
// Sources above, below and left of the mask read as 0. Right of the last column the stored bits
// are read as they stand: eroding a mask whose stored bits there are 0 clears the last columns.
// Results for x >= width are computed from the stored bits in the same way and written, because
// they are what the next operation reads there. They reach to the end of the last strip and two
// lanes beyond, where a strip is 128 - 2 * lane_bits pixels and strips cover the width; sources one
// lane or more behind the last strip read as 0. Bits behind the last written one stay as they were,
// and so does the zero border of four bytes in front of each row.
//
// An operation other than kBitmaskErode and kBitmaskDilate, and an element wider than 24 columns or
// without columns, leave `dst` as it was.
void bitmask_morph(BitMask *dst, const BitMask *src, const StructuringElement *element,
                   int operation);

void bitmask_erode(BitMask *dst, const BitMask *src, const StructuringElement *element);
void bitmask_dilate(BitMask *dst, const BitMask *src, const StructuringElement *element);

#endif  // MASKS_MORPHOLOGY_H_
