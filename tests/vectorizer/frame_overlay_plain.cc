#include "vectorizer/frame_overlay_plain.h"

#include <algorithm>
#include <cstdlib>

namespace nox::test {

namespace {

// Sample (x, y) of a plane, or null outside of the bytes that the plane owns, and in a row that
// begins in front of them.
std::uint8_t *sample(const NoxVideoFrame &frame, int p, std::int64_t x, std::int64_t y) {
  const std::int64_t row = y * frame.strides[p], offset = row + x;
  const PlainExtent extent = extent_plain(frame, p);
  return row >= extent.first && offset < extent.end ? frame.planes[p] + offset : nullptr;
}

// Alpha of the luma sample, or of the chroma sample whose pair begins at (x, y); -1 where there is
// none.
int alpha_at(const NoxVideoFrame &src, bool chroma, std::int64_t x, std::int64_t y) {
  const std::uint8_t *first = sample(src, 3, x, y);
  if (first == nullptr) return -1;
  if (!chroma) return *first;
  const std::uint8_t *second = sample(src, 3, x + 1, y);
  return (*first + (second != nullptr ? *second : *first) + 1) / 2;
}

void draw_sample(const NoxVideoFrame &dst, const NoxVideoFrame &src, int p, std::int64_t to_x,
                 std::int64_t to_y, std::int64_t from_x, std::int64_t from_y, int alpha) {
  std::uint8_t *to = sample(dst, p, to_x, to_y);
  const std::uint8_t *from = sample(src, p, from_x, from_y);
  if (to == nullptr || from == nullptr || alpha < 0) return;
  *to = blend_plain(*to, *from, alpha);
}

}  // namespace

PlainExtent extent_plain(const NoxVideoFrame &frame, int p) {
  if (frame.plane_heights[p] == 0) return {0, 0};
  const std::int64_t stride = frame.strides[p], width = frame.plane_widths[p];
  const std::int64_t last_row = stride * (frame.plane_heights[p] - 1);
  return {std::min<std::int64_t>(0, last_row),
          std::max<std::int64_t>(0, last_row) + std::max(std::abs(stride), width)};
}

std::uint8_t blend_plain(int dst, int src, int alpha) {
  const int blended = (dst * (64 - alpha) + src * alpha + 32) >> 6;
  return static_cast<std::uint8_t>(blended < 0 ? 0 : blended > 255 ? 255 : blended);
}

void video_frame_overlay_plain(const NoxVideoFrame &dst, const NoxVideoFrame &src, std::int64_t x,
                               std::int64_t y) {
  const bool has_alpha = (src.format & 0x80) != 0;
  x = (x + 1) & ~std::int64_t{1};
  y = (y + 1) & ~std::int64_t{1};
  std::int64_t entry_x = 0, entry_y = 0;
  if (x < 0) {
    entry_x = -x;
    x = 0;
  }
  if (y < 0) {
    entry_y = -y;
    y = 0;
  }
  if (entry_x > src.width || entry_y > src.height) return;
  const std::int64_t w = x + src.width > dst.width ? dst.width - x : src.width - entry_x;
  const std::int64_t h = y + src.height > dst.height ? dst.height - y : src.height - entry_y;
  if (w < 1 || h < 1) return;
  for (std::int64_t r = 0; r < h; ++r) {
    for (std::int64_t i = 0; i < w; ++i) {
      const int alpha = has_alpha ? alpha_at(src, false, entry_x + i, entry_y + r) : 64;
      draw_sample(dst, src, 0, x + i, y + r, entry_x + i, entry_y + r, alpha);
    }
  }
  for (int p = 1; p <= 2; ++p) {
    for (std::int64_t r = 0; r < (h + 1) / 2; ++r) {
      for (std::int64_t i = 0; i < (w + 1) / 2; ++i) {
        const int alpha = has_alpha ? alpha_at(src, true, entry_x + 2 * i, entry_y + 2 * r) : 64;
        draw_sample(dst, src, p, x / 2 + i, y / 2 + r, (entry_x + 1) / 2 + i, (entry_y + 1) / 2 + r,
                    alpha);
      }
    }
  }
}

}  // namespace nox::test
