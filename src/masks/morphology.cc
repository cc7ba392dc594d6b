#include "masks/morphology.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "video/aligned_alloc.h"

namespace {

constexpr std::int32_t kRowBlock = 16;

// Twice the lane for every 8 columns, so that a pixel's sources never leave the two lanes at hand.
std::int32_t lane_bits_for(std::int32_t width) {
  constexpr std::int32_t kLargest = 30;
  return 1 << std::min((std::max(width, 0) + 7) / 8 + 2, kLargest);
}

std::uint32_t row_pattern(const StructuringElement &element, std::int32_t row) {
  std::uint32_t pattern;
  std::memcpy(&pattern, element.rows + static_cast<std::ptrdiff_t>(row) * kRowBlock, 4);
  return element.lane_bits == 32 ? pattern : pattern & ((1U << element.lane_bits) - 1);
}

// Bytes of a row that a pass reads and writes.
struct RowExtent {
  std::int32_t read;
  std::int32_t written;
};

RowExtent row_extent(const BitMask &mask, const StructuringElement &element) {
  const std::int32_t step = 128 - 2 * element.lane_bits;
  const std::int32_t strips = (mask.width + step - 1) / step;
  const std::int32_t end = strips * step / 8;
  return {end + element.lane_bytes, end + 2 * element.lane_bytes};
}

int stored_bit(const BitMask &mask, std::int32_t x, std::int32_t y, std::int32_t read) {
  if (y < 0 || y >= mask.height || x < 0 || x >= read * 8) return 0;
  return bitmask_get(&mask, x, y);
}

int morph_pixel(const BitMask &src, const StructuringElement &element, int operation,
                std::int32_t x, std::int32_t y, std::int32_t read) {
  bool all = true;
  std::uint32_t any = 0;
  for (std::int32_t r = 0; r < element.height; ++r) {
    const std::uint32_t pattern = row_pattern(element, r);
    for (std::int32_t c = 0; c < element.width; ++c) {
      if ((pattern >> c & 1) == 0) continue;
      const int bit = stored_bit(src, x + c - element.anchor_x, y + r - element.anchor_y, read);
      all = all && bit != 0;
      any |= static_cast<std::uint32_t>(bit) << c;
    }
  }
  if (operation == kBitmaskErode) return all ? 1 : 0;
  return any != 0 && (any >> (element.lane_bits - 1) & 1) == 0 ? 1 : 0;
}

}  // namespace

StructuringElement *structuring_element_new(const std::uint8_t *members, std::int32_t width,
                                            std::int32_t height) {
  auto *element = static_cast<StructuringElement *>(
      nox_aligned_alloc(kNoxAlignment, sizeof(StructuringElement)));
  element->width = width;
  element->height = height;
  element->anchor_x = width / 2;
  element->anchor_y = height / 2;
  element->lane_bits = lane_bits_for(width);
  element->lane_bytes = element->lane_bits / 8;
  element->rows = static_cast<std::uint8_t *>(
      nox_aligned_alloc(kNoxAlignment, static_cast<std::size_t>(std::max(height, 0)) * kRowBlock));
  const auto lane = static_cast<std::size_t>(std::min(element->lane_bytes, 4));
  for (std::ptrdiff_t r = 0; r < height; ++r) {
    std::uint32_t pattern = 0;
    for (std::int32_t c = 0; c < std::min(width, 32); ++c) {
      if (members[r * width + c] != 0) pattern |= std::uint32_t{1} << c;
    }
    for (std::size_t i = 0; i < kRowBlock; ++i) {
      element->rows[r * kRowBlock + static_cast<std::ptrdiff_t>(i)] =
          static_cast<std::uint8_t>(pattern >> (8 * (i % lane)));
    }
  }
  return element;
}

void structuring_element_free(StructuringElement *element) {
  if (element == nullptr) return;
  nox_aligned_free(element->rows);
  nox_aligned_free(element);
}

void bitmask_morph(BitMask *dst, const BitMask *src, const StructuringElement *element,
                   int operation) {
  const std::int32_t lane = element->lane_bits;
  if (operation != kBitmaskErode && operation != kBitmaskDilate) return;
  if (lane != 8 && lane != 16 && lane != 32) return;
  const RowExtent extent = row_extent(*src, *element);
  for (std::int32_t y = 0; y < src->height; ++y) {
    std::uint8_t *row = dst->data + static_cast<std::ptrdiff_t>(y) * dst->stride;
    for (std::int32_t i = 0; i < extent.written; ++i) {
      int byte = 0;
      for (std::int32_t b = 0; b < 8; ++b) {
        byte |= morph_pixel(*src, *element, operation, 8 * i + b, y, extent.read) << b;
      }
      row[i] = static_cast<std::uint8_t>(byte);
    }
  }
}

void bitmask_erode(BitMask *dst, const BitMask *src, const StructuringElement *element) {
  bitmask_morph(dst, src, element, kBitmaskErode);
}

void bitmask_dilate(BitMask *dst, const BitMask *src, const StructuringElement *element) {
  bitmask_morph(dst, src, element, kBitmaskDilate);
}
