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

// Returns a cleared mask; release it with bitmask_free. Null when its block would be larger than
// `size` can tell, 2^31 - 1 bytes. A size below 0 gives an empty block.
BitMask *bitmask_new(std::int32_t width, std::int32_t height);

// Releases the mask; null is ignored.
void bitmask_free(BitMask *mask);

// Copies the whole block of `src`, padding included. Both masks have the same size.
void bitmask_copy(BitMask *dst, const BitMask *src);

// Sets every pixel of `dst` to whether the sample of `plane` is above (or below) `threshold`; a
// sample equal to the threshold is never set. Only the low 8 bits of `threshold` count. `plane` is
// row 0 of dst->width by dst->height 8-bit samples, rows `plane_stride` bytes apart; it may have
// any alignment, and the stride any value (rows that are packed, overlap or run upwards included).
//
// The whole block of `dst` is overwritten: every bit is 0 but those below width rounded up to a
// multiple of 16. Bits between the width and there come from the bytes that follow the row, as long
// as these belong to the plane; where they do not, they are 0 and nothing is read. What belongs to
// a plane is said at NoxVideoFrame: the padding of all its rows, the last one included.
void bitmask_threshold(BitMask *dst, const std::uint8_t *plane, std::int32_t plane_stride,
                       std::uint32_t threshold);
void bitmask_threshold_below(BitMask *dst, const std::uint8_t *plane, std::int32_t plane_stride,
                             std::uint32_t threshold);

// dst = a OR b, a AND b, a AND NOT b. All masks have the size of `dst`, which may be `a` or `b`
// itself. Each row is combined in whole 64-bit words, ceil(width / 64) of them; the bits behind
// stay as they were.
void bitmask_or(BitMask *dst, const BitMask *a, const BitMask *b);
void bitmask_and(BitMask *dst, const BitMask *a, const BitMask *b);
void bitmask_and_not(BitMask *dst, const BitMask *a, const BitMask *b);

// Pixel (x, y), 0 or 1; 0 <= x < width and 0 <= y < height.
int bitmask_get(const BitMask *mask, std::int32_t x, std::int32_t y);

#endif  // MASKS_BITMASK_H_
