#include "masks/bitmask.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "masks/bitmask_kernels.h"
#include "video/aligned_alloc.h"
#include "video/plane_memory.h"

namespace {

constexpr std::int32_t kRowPadding = 19;
constexpr std::int32_t kFrontPadding = 4;

std::int64_t row_stride(std::int64_t width) {
  return (width + 127) / 128 * 16 + kRowPadding;
}

nox::masks::SamplePlane sample_plane(const BitMask &mask, const std::uint8_t *plane,
                                     std::int32_t stride) {
  return {plane, stride, nox::video::plane_extent(stride, mask.width, mask.height).end};
}

std::size_t block_bytes(const BitMask &mask) {
  return static_cast<std::size_t>(mask.size);
}

void clear(BitMask *mask) {
  std::memset(mask->block, 0, block_bytes(*mask));
}

}  // namespace

BitMask *bitmask_new(std::int32_t width, std::int32_t height) {
  const std::int64_t stride = row_stride(width);
  const std::int64_t size = height * stride;
  if (size > std::numeric_limits<std::int32_t>::max()) return nullptr;
  auto *mask = static_cast<BitMask *>(nox_aligned_alloc(kNoxAlignment, sizeof(BitMask)));
  mask->width = width;
  mask->height = height;
  mask->stride = static_cast<std::int32_t>(stride);
  mask->size = static_cast<std::int32_t>(std::max<std::int64_t>(size, 0));
  mask->block = static_cast<std::uint8_t *>(nox_aligned_alloc(kNoxAlignment, block_bytes(*mask)));
  mask->data = mask->block + kFrontPadding;
  clear(mask);
  return mask;
}

void bitmask_free(BitMask *mask) {
  if (mask == nullptr) return;
  nox_aligned_free(mask->block);
  nox_aligned_free(mask);
}

void bitmask_copy(BitMask *dst, const BitMask *src) {
  std::memcpy(dst->block, src->block, block_bytes(*dst));
}

void bitmask_threshold(BitMask *dst, const std::uint8_t *plane, std::int32_t plane_stride,
                       std::uint32_t threshold) {
  clear(dst);
  nox::masks::threshold_above(dst, sample_plane(*dst, plane, plane_stride),
                              static_cast<std::uint8_t>(threshold));
}

void bitmask_threshold_below(BitMask *dst, const std::uint8_t *plane, std::int32_t plane_stride,
                             std::uint32_t threshold) {
  clear(dst);
  nox::masks::threshold_under(dst, sample_plane(*dst, plane, plane_stride),
                              static_cast<std::uint8_t>(threshold));
}

void bitmask_or(BitMask *dst, const BitMask *a, const BitMask *b) {
  nox::masks::or_words(dst, a, b);
}

void bitmask_and(BitMask *dst, const BitMask *a, const BitMask *b) {
  nox::masks::and_words(dst, a, b);
}

void bitmask_and_not(BitMask *dst, const BitMask *a, const BitMask *b) {
  nox::masks::and_not_words(dst, a, b);
}

int bitmask_get(const BitMask *mask, std::int32_t x, std::int32_t y) {
  const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
  return (row[x / 8] >> (x % 8)) & 1;
}
