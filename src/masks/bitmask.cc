#include "masks/bitmask.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "video/aligned_alloc.h"

namespace {

constexpr std::int32_t kRowPadding = 19;
constexpr std::int32_t kFrontPadding = 4;

std::int32_t row_stride(std::int32_t width) {
  return (width + 127) / 128 * 16 + kRowPadding;
}

// Bytes from `plane` that a threshold may read: up to the last sample in memory order, and behind
// it the stride padding where alignment says that the plane has one.
std::ptrdiff_t plane_extent(const BitMask &mask, const std::uint8_t *plane, std::int32_t stride) {
  const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(stride) * (mask.height - 1);
  const bool padded = reinterpret_cast<std::uintptr_t>(plane) % 16 == 0 && stride % 16 == 0 &&
                      std::abs(static_cast<std::int64_t>(stride)) >= mask.width;
  const std::int32_t row = padded ? (mask.width + 15) / 16 * 16 : mask.width;
  return std::max<std::ptrdiff_t>(last, 0) + row;
}

template <typename Compare>
void threshold_plane(BitMask *dst, const std::uint8_t *plane, std::int32_t stride,
                     Compare compare) {
  std::memset(dst->block, 0, static_cast<std::size_t>(dst->size));
  const std::ptrdiff_t extent = plane_extent(*dst, plane, stride);
  const std::ptrdiff_t width = (dst->width + 15) / 16 * 16;
  for (std::ptrdiff_t y = 0; y < dst->height; ++y) {
    std::uint8_t *row = dst->data + y * dst->stride;
    const std::ptrdiff_t count = std::min(width, extent - y * stride);
    for (std::ptrdiff_t x = 0; x < count; ++x) {
      const int bit = compare(plane[y * stride + x]) ? 1 : 0;
      row[x / 8] = static_cast<std::uint8_t>(row[x / 8] | bit << (x % 8));
    }
  }
}

template <typename Combine>
void combine_words(BitMask *dst, const BitMask *a, const BitMask *b, Combine combine) {
  const std::ptrdiff_t bytes = (dst->width + 63) / 64 * 8;
  for (std::ptrdiff_t y = 0; y < dst->height; ++y) {
    for (std::ptrdiff_t i = 0; i < bytes; ++i) {
      dst->data[y * dst->stride + i] = static_cast<std::uint8_t>(
          combine(a->data[y * a->stride + i], b->data[y * b->stride + i]));
    }
  }
}

}  // namespace

BitMask *bitmask_new(std::int32_t width, std::int32_t height) {
  auto *mask = static_cast<BitMask *>(nox_aligned_alloc(kNoxAlignment, sizeof(BitMask)));
  mask->width = width;
  mask->height = height;
  mask->stride = row_stride(width);
  mask->size = height * mask->stride;
  mask->block = static_cast<std::uint8_t *>(
      nox_aligned_alloc(kNoxAlignment, static_cast<std::size_t>(mask->size)));
  mask->data = mask->block + kFrontPadding;
  std::memset(mask->block, 0, static_cast<std::size_t>(mask->size));
  return mask;
}

void bitmask_free(BitMask *mask) {
  if (mask == nullptr) return;
  nox_aligned_free(mask->block);
  nox_aligned_free(mask);
}

void bitmask_copy(BitMask *dst, const BitMask *src) {
  std::memcpy(dst->block, src->block, static_cast<std::size_t>(dst->size));
}

void bitmask_threshold(BitMask *dst, const std::uint8_t *plane, std::int32_t plane_stride,
                       std::uint32_t threshold) {
  const auto limit = static_cast<std::uint8_t>(threshold);
  threshold_plane(dst, plane, plane_stride, [limit](std::uint8_t v) { return v > limit; });
}

void bitmask_threshold_below(BitMask *dst, const std::uint8_t *plane, std::int32_t plane_stride,
                             std::uint32_t threshold) {
  const auto limit = static_cast<std::uint8_t>(threshold);
  threshold_plane(dst, plane, plane_stride, [limit](std::uint8_t v) { return v < limit; });
}

void bitmask_or(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_words(dst, a, b, [](int p, int q) { return p | q; });
}

void bitmask_and(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_words(dst, a, b, [](int p, int q) { return p & q; });
}

void bitmask_and_not(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_words(dst, a, b, [](int p, int q) { return p & ~q; });
}

int bitmask_get(const BitMask *mask, std::int32_t x, std::int32_t y) {
  const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
  return (row[x / 8] >> (x % 8)) & 1;
}
