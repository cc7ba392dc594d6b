#include "vectorizer/frame_overlay.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "vectorizer/frame_overlay_kernels.h"
#include "video/plane_memory.h"

namespace {

using nox::video::plane_sample;
using nox::video::samples_in_plane;

constexpr int kAlphaPlane = 3;

// What is drawn along one axis: `length` samples of the source from `entry` on, at `position`. In
// 64 bits, since a position and a size together leave 32.
struct Span {
  std::int64_t position;
  std::int64_t entry;
  std::int64_t length;
};

Span clip(std::int64_t position, std::int64_t source, std::int64_t destination) {
  position = (position + 1) & ~std::int64_t{1};
  const std::int64_t entry = std::max<std::int64_t>(-position, 0);
  position = std::max<std::int64_t>(position, 0);
  if (entry > source) return {position, entry, 0};
  // The whole source counts here, not what is left of it behind the entry: deliberate.
  const bool beyond = position + source > destination;
  return {position, entry, beyond ? destination - position : source - entry};
}

Span halve(const Span &span) {
  return {span.position / 2, (span.entry + 1) / 2, (span.length + 1) / 2};
}

// One row of plane `p` of both pictures: as many samples as both planes hold.
struct Row {
  std::uint8_t *dst;
  const std::uint8_t *src;
  std::int64_t samples;
};

Row plane_row(const NoxVideoFrame &dst, const NoxVideoFrame &src, int p, const Span &x,
              const Span &y, std::int64_t r) {
  const std::int64_t to = samples_in_plane(dst, p, x.position, y.position + r, x.length);
  const std::int64_t from = samples_in_plane(src, p, x.entry, y.entry + r, x.length);
  const std::int64_t samples = std::min(to, from);
  if (samples == 0) return {nullptr, nullptr, 0};
  return {plane_sample(dst, p, x.position, y.position + r),
          plane_sample(src, p, x.entry, y.entry + r), samples};
}

void copy_plane(const NoxVideoFrame &dst, const NoxVideoFrame &src, int p, const Span &x,
                const Span &y) {
  for (std::int64_t r = 0; r < y.length; ++r) {
    const Row row = plane_row(dst, src, p, x, y, r);
    if (row.samples > 0) std::memcpy(row.dst, row.src, static_cast<std::size_t>(row.samples));
  }
}

void blend_luma_plane(const NoxVideoFrame &dst, const NoxVideoFrame &src, const Span &x,
                      const Span &y) {
  for (std::int64_t r = 0; r < y.length; ++r) {
    const Row row = plane_row(dst, src, 0, x, y, r);
    const std::int64_t samples =
        samples_in_plane(src, kAlphaPlane, x.entry, y.entry + r, row.samples);
    if (samples == 0) continue;
    blend_row_luma(row.dst, row.src, plane_sample(src, kAlphaPlane, x.entry, y.entry + r),
                   static_cast<std::int32_t>(samples));
  }
}

// `alphas` of the 2 * row.samples alphas are there.
void blend_chroma_row(const Row &row, const std::uint8_t *alpha, std::int64_t alphas) {
  const std::int64_t pairs = alphas / 2;
  blend_row_chroma(row.dst, row.src, alpha, static_cast<std::int32_t>(pairs));
  if (alphas % 2 == 0) return;
  const std::uint8_t last[2] = {alpha[alphas - 1], alpha[alphas - 1]};
  blend_row_chroma(row.dst + pairs, row.src + pairs, last, 1);
}

// x and y are the spans of the luma.
void blend_chroma_plane(const NoxVideoFrame &dst, const NoxVideoFrame &src, int p, const Span &x,
                        const Span &y) {
  const Span chroma_x = halve(x), chroma_y = halve(y);
  for (std::int64_t r = 0; r < chroma_y.length; ++r) {
    const Row row = plane_row(dst, src, p, chroma_x, chroma_y, r);
    const std::int64_t alpha_row = y.entry + 2 * r;
    const std::int64_t alphas =
        samples_in_plane(src, kAlphaPlane, x.entry, alpha_row, 2 * row.samples);
    if (alphas == 0) continue;
    blend_chroma_row(row, plane_sample(src, kAlphaPlane, x.entry, alpha_row), alphas);
  }
}

}  // namespace

void video_frame_overlay(const NoxVideoFrame *dst, const NoxVideoFrame *src, std::int32_t x,
                         std::int32_t y) {
  const Span across = clip(x, src->width, dst->width);
  const Span down = clip(y, src->height, dst->height);
  if (across.length < 1 || down.length < 1) return;
  if ((src->format & kNoxFormatAlpha) != 0) {
    blend_luma_plane(*dst, *src, across, down);
    for (int p : {1, 2}) blend_chroma_plane(*dst, *src, p, across, down);
  } else {
    copy_plane(*dst, *src, 0, across, down);
    for (int p : {1, 2}) copy_plane(*dst, *src, p, halve(across), halve(down));
  }
}

void blend_row_luma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                    std::int32_t n) {
  if (n > 0) nox::vectorizer::blend_luma(dst, src, alpha, static_cast<std::size_t>(n));
}

void blend_row_chroma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                      std::int32_t n) {
  if (n > 0) nox::vectorizer::blend_chroma(dst, src, alpha, static_cast<std::size_t>(n));
}
