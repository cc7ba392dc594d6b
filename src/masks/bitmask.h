// A binary picture, one bit per pixel.
#ifndef MASKS_BITMASK_H_
#define MASKS_BITMASK_H_

#include <cstdint>

// Rows are 16 * ceil(width / 128) bytes of pixels and 19 bytes of padding, so that consecutive rows
// start at different alignments and word-wide code may run past either end of a row. Pixel x of a
// row is bit x % 8 of byte x / 8 (least significant bit first); 1 is foreground. Row y starts at
// data + y * stride.
//
// The block is height * stride bytes and row 0 starts 4 bytes into it, so the last 4 bytes of the
// last row's padding lie outside. The last 4 bytes of every row's padding, and the 4 bytes before
// row 0, are 0 for the life of the mask: they are the border left of column 0.
struct BitMask {
  std::uint8_t *block;  // owned; aligned to kNoxAlignment
  std::uint8_t *data;   // row 0: block + 4
  std::int32_t size;    // bytes in the block
  std::int32_t width;   // in pixels
  std::int32_t height;  // in rows
  std::int32_t stride;  // bytes from one row to the next
};

// Returns a cleared mask; release it with bitmask_free.
BitMask *bitmask_new(std::int32_t width, std::int32_t height);

// Releases the mask; null is ignored.
void bitmask_free(BitMask *mask);

// Copies the whole block of `src`, padding included. Both masks have the same size.
void bitmask_copy(BitMask *dst, const BitMask *src);

// Pixel (x, y), 0 or 1; 0 <= x < width and 0 <= y < height.
int bitmask_get(const BitMask *mask, std::int32_t x, std::int32_t y);

#endif  // MASKS_BITMASK_H_
