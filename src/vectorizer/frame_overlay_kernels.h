// The row blends behind blend_row_luma and blend_row_chroma.
#ifndef VECTORIZER_FRAME_OVERLAY_KERNELS_H_
#define VECTORIZER_FRAME_OVERLAY_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace nox::vectorizer {

void blend_luma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                std::size_t n);
void blend_chroma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                  std::size_t n);

}  // namespace nox::vectorizer

#endif  // VECTORIZER_FRAME_OVERLAY_KERNELS_H_
