// The rows of a mask as 64-bit words in which a pixel right of the picture is never set.
#ifndef PENTRACKER_MASK_RUNS_H_
#define PENTRACKER_MASK_RUNS_H_

#include <bit>
#include <cstdint>
#include <cstring>

namespace nox::pentracker {

static_assert(std::endian::native == std::endian::little, "mask words are read as they are stored");

inline constexpr std::int32_t kWordBits = 64;

inline std::int32_t words_of(std::int32_t bits) {
  return (bits + kWordBits - 1) / kWordBits;
}

// Reads the words_of(width) words of a row, whose first byte is `row`, into `words`; what is stored
// right of the last column becomes 0. Returns whether any pixel is set.
inline bool read_row(const std::uint8_t *row, std::int32_t width, std::uint64_t *words) {
  const std::int32_t whole = width / kWordBits;
  std::uint64_t any = 0;
  for (std::int32_t i = 0; i < whole; ++i) {
    std::memcpy(words + i, row + i * 8, sizeof(*words));
    any |= words[i];
  }
  if (width % kWordBits != 0) {
    std::memcpy(words + whole, row + whole * 8, sizeof(*words));
    words[whole] &= (std::uint64_t{1} << (width % kWordBits)) - 1;
    any |= words[whole];
  }
  return any != 0;
}

}  // namespace nox::pentracker

#endif  // PENTRACKER_MASK_RUNS_H_
