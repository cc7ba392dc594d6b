// Rows of bits in whole vectors, as the vectorizer's kernels pass them on.
#ifndef VECTORIZER_BIT_ROWS_H_
#define VECTORIZER_BIT_ROWS_H_

#include <bit>
#include <cstddef>
#include <cstdint>

namespace nox::vectorizer {

// Rows are a multiple of this many 64-bit words: the widest vector, so that kernels have no tails.
inline constexpr std::size_t kBlockWords = 8;

// Words of a row of `width` bits.
inline constexpr std::size_t block_row_words(std::int32_t width) {
  const auto words = (static_cast<std::size_t>(width) + 63) / 64;
  return (words + kBlockWords - 1) / kBlockWords * kBlockWords;
}

// Kernels store and load the bits byte by byte.
static_assert(std::endian::native == std::endian::little, "byte i holds bits 8 i to 8 i + 7");

// A band of rows. Pixel x of a row is bit x % 64 of word x / 64; every bit from the picture's width
// to the end of the row is 0. Rows start at multiples of 64 bytes.
struct BitRows {
  std::uint64_t *data;
  std::size_t words;  // in a row: a multiple of kBlockWords
  std::size_t pitch;  // words from one row to the next
  std::int32_t count;

  std::uint64_t *row(std::int32_t y) const { return data + static_cast<std::size_t>(y) * pitch; }
  // The `rows` rows from `first` on.
  BitRows slice(std::int32_t first, std::int32_t rows) const {
    return {row(first), words, pitch, rows};
  }
};

}  // namespace nox::vectorizer

#endif  // VECTORIZER_BIT_ROWS_H_
