// Drawing one planar 4:2:0 picture onto another.
#ifndef VECTORIZER_FRAME_OVERLAY_H_
#define VECTORIZER_FRAME_OVERLAY_H_

#include <cstdint>

#include "video/nox_video_frame.h"

// Draws `src` onto `dst`, both of the planar family, with its top-left corner at (x, y) of the luma
// grid, rounded up to even so that luma and chroma stay aligned, and clipped to `dst`. A source
// with an alpha plane is blended, alpha going from 0 (leaves `dst`) to 64 (replaces it); any other
// is copied. Chroma takes the mean of each horizontal pair of alphas, rounded up, of every second
// row. Only the planes of `dst` are written. The planes of `dst` and `src` do not overlap.
//
// A source that reaches beyond both the left and the right of `dst` is drawn over its whole width,
// that of the source's columns beyond its width too; likewise downwards. That is deliberate. What a
// plane owns is read and drawn, padding included; a sample that lies outside, or whose alpha does,
// is left out, on either side, and so is a whole row that begins in front of it, as rows that run
// upwards can. The alpha that an odd width lacks for its last pair is read from behind the row, and
// is the pair's other alpha where the plane ends.
void video_frame_overlay(const NoxVideoFrame *dst, const NoxVideoFrame *src, std::int32_t x,
                         std::int32_t y);

// dst[i] = (dst[i] * (64 - a) + src[i] * a + 32) >> 6 clamped to 0 to 255, with a = alpha[i], for i
// < n. Alpha is 0 to 64; the formula holds above, too.
void blend_row_luma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                    std::int32_t n);

// The same with a = (alpha[2 i] + alpha[2 i + 1] + 1) >> 1; `alpha` has 2 n values.
void blend_row_chroma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                      std::int32_t n);

#endif  // VECTORIZER_FRAME_OVERLAY_H_
