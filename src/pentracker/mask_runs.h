// The rows of a mask as 64-bit words in which a pixel right of the picture is never set.
#ifndef PENTRACKER_MASK_RUNS_H_
#define PENTRACKER_MASK_RUNS_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "masks/bitmask.h"

namespace nox::pentracker {

static_assert(std::endian::native == std::endian::little, "mask words are read as they are stored");

inline constexpr std::int32_t kWordBits = 64;

inline std::int32_t words_of(std::int32_t bits) {
  return (bits + kWordBits - 1) / kWordBits;
}

// Copies row `y` to `words`, which has room for words_of(mask->width), and clears what is stored
// right of the last column. Returns whether any pixel is set.
inline bool load_row_words(const BitMask *mask, std::int32_t y, std::uint64_t *words) {
  const std::int32_t count = words_of(mask->width);
  if (count == 0) return false;
  const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
  std::memcpy(words, row, static_cast<std::size_t>(count) * sizeof(*words));
  words[count - 1] &= ~std::uint64_t{0} >> (count * kWordBits - mask->width);
  std::uint64_t any = 0;
  for (std::int32_t i = 0; i < count; ++i) any |= words[i];
  return any != 0;
}

}  // namespace nox::pentracker

#endif  // PENTRACKER_MASK_RUNS_H_
