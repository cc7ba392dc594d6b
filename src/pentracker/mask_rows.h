// The rows of a mask as the places where runs of set pixels begin and end.
#ifndef PENTRACKER_MASK_ROWS_H_
#define PENTRACKER_MASK_ROWS_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "masks/bitmask.h"

namespace nox::pentracker {

static_assert(std::endian::native == std::endian::little, "mask words are read as they are stored");

inline constexpr std::int32_t kWordBits = 64;
inline constexpr std::int32_t kRightOfPicture = std::numeric_limits<std::int32_t>::max();

inline std::int32_t words_of(std::int32_t bits) {
  return (bits + kWordBits - 1) / kWordBits;
}

// Most edges that read_edges writes for a row.
inline std::int32_t most_edges(std::int32_t width) {
  return width + 2;
}

// The pixels of a word of a row; what is stored right of the last column counts as 0.
inline std::uint64_t read_word(const std::uint8_t *row, std::int32_t width, std::int32_t word) {
  std::uint64_t pixels;
  std::memcpy(&pixels, row + std::ptrdiff_t{word} * 8, sizeof(pixels));
  const std::int32_t left = width - word * kWordBits;
  return left < kWordBits ? pixels & ((std::uint64_t{1} << left) - 1) : pixels;
}

// The first row from `y` on that has set pixels, or the height. Most of a mask is empty as a rule,
// so several rows are looked at in one go; when only bytes between rows are set, row by row.
inline std::int32_t next_set_row(const BitMask *mask, std::int32_t y) {
  constexpr std::int32_t kBand = 8;
  const std::int32_t words = words_of(mask->width);
  const std::size_t bytes = static_cast<std::size_t>(mask->stride) * (kBand - 1) +
                            static_cast<std::size_t>(words) * sizeof(std::uint64_t);
  for (; y < mask->height; ++y) {
    const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
    // Every byte is 0 when the first one is and each is the same as the next.
    while (y + kBand <= mask->height && *row == 0 && std::memcmp(row, row + 1, bytes - 1) == 0) {
      y += kBand;
      row += static_cast<std::ptrdiff_t>(kBand) * mask->stride;
    }
    if (y == mask->height) break;
    std::uint64_t any = 0;
    for (std::int32_t word = 0; word < words; ++word) any |= read_word(row, mask->width, word);
    if (any != 0) break;
  }
  return y;
}

// Writes for each run of set pixels, left to right, its first pixel and the pixel behind its last;
// the list ends with kRightOfPicture.
inline void read_edges(const std::uint8_t *row, std::int32_t width, std::int32_t *edges) {
  std::uint64_t left = 0;  // the pixel left of the word, in bit 0
  const std::int32_t words = words_of(width);
  for (std::int32_t word = 0; word < words; ++word) {
    const std::uint64_t pixels = read_word(row, width, word);
    const std::int32_t first = word * kWordBits;
    for (std::uint64_t turns = pixels ^ (pixels << 1 | left); turns != 0; turns &= turns - 1) {
      *edges++ = first + std::countr_zero(turns);
    }
    left = pixels >> (kWordBits - 1);
  }
  if (left != 0) *edges++ = words * kWordBits;
  *edges = kRightOfPicture;
}

}  // namespace nox::pentracker

#endif  // PENTRACKER_MASK_ROWS_H_
