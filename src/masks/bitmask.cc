#include "masks/bitmask.h"

#include <cstddef>
#include <cstring>

#include "video/aligned_alloc.h"

namespace {

constexpr std::int32_t kRowPadding = 19;
constexpr std::int32_t kFrontPadding = 4;

std::int32_t row_stride(std::int32_t width) {
  return (width + 127) / 128 * 16 + kRowPadding;
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

int bitmask_get(const BitMask *mask, std::int32_t x, std::int32_t y) {
  const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
  return (row[x / 8] >> (x % 8)) & 1;
}
