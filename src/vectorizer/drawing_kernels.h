// The picture laid over a white page, at full strength where a bit says so and washed out
// elsewhere.
#ifndef VECTORIZER_DRAWING_KERNELS_H_
#define VECTORIZER_DRAWING_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "vectorizer/bit_rows.h"

namespace nox::vectorizer {

// The page: white.
inline constexpr std::uint8_t kPageLuma = 255;
inline constexpr std::uint8_t kPageChroma = 128;
inline constexpr std::uint8_t page_value(int plane) {
  return plane == 0 ? kPageLuma : kPageChroma;
}

// Opacity of the picture, of 64: where a bit is set, and elsewhere.
inline constexpr std::uint8_t kAlphaEdge = 64;
inline constexpr std::uint8_t kAlphaWash = 16;

// Draws `samples` luma samples: those whose bit is set as they are, the others at kAlphaWash over
// kPageLuma. `dst` may be `src`; what lies behind the last sample is not touched. At least 8 bytes
// can be read from each byte of `bits` that holds a sample's bit.
void draw_luma_row(std::uint8_t *dst, const std::uint8_t *src, const std::uint64_t *bits,
                   std::size_t samples);

// For the chroma samples of a row, each under the pixels 2 i and 2 i + 1: bit i of `any` is whether
// at least one of the two is set, of `both` whether both are. `words` is a multiple of kBlockWords;
// `any` and `both` have half as many.
void split_pairs(const std::uint64_t *bits, std::size_t words, std::uint64_t *any,
                 std::uint64_t *both);

// Draws `samples` chroma samples over kPageChroma: under two set pixels as they are, under one at
// the mean of the two alphas, rounded up, under none at kAlphaWash. Aliasing and reading as above.
void draw_chroma_row(std::uint8_t *dst, const std::uint8_t *src, const std::uint64_t *any,
                     const std::uint64_t *both, std::size_t samples);

}  // namespace nox::vectorizer

#endif  // VECTORIZER_DRAWING_KERNELS_H_
