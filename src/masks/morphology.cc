#include "masks/morphology.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "masks/known_shapes.h"
#include "masks/morphology_general.h"
#include "masks/morphology_pass.h"
#include "masks/morphology_plan.h"
#include "video/aligned_alloc.h"

namespace {

using nox::masks::ElementPlan;
using nox::masks::MorphologyPass;

// Twice the lane for every 8 columns, so that a pixel's sources never leave the two lanes at hand.
std::int32_t lane_bits_for(std::int32_t width) {
  constexpr std::int32_t kLargest = 30;
  return 1 << std::min((std::max(width, 0) + 7) / 8 + 2, kLargest);
}

MorphologyPass make_pass(BitMask *dst, const BitMask &src, const StructuringElement &element) {
  const std::int32_t step = 128 - 2 * element.lane_bits;
  const std::int32_t strips = (src.width + step - 1) / step;
  const std::int32_t bytes = strips * step / 8 + 2 * element.lane_bytes;
  return {src.data, dst->data, src.stride, dst->stride, src.height, bytes, element.lane_bytes};
}

// The element's rows with only the columns of `columns`.
ElementPlan plan_columns(const StructuringElement &element, std::uint32_t columns) {
  std::vector<std::uint32_t> rows;
  rows.reserve(static_cast<std::size_t>(std::max(element.height, 0)));
  for (std::int32_t r = 0; r < element.height; ++r) {
    rows.push_back(nox::masks::row_pattern(element, r) & columns);
  }
  return nox::masks::plan_element(rows, element.anchor_y);
}

// What a pass writes when the element has no members.
void fill_rows(const MorphologyPass &pass, int value) {
  for (std::ptrdiff_t y = 0; y < pass.height; ++y) {
    std::memset(pass.dst + y * pass.dst_stride, value, static_cast<std::size_t>(pass.bytes));
  }
}

void erode_any(const MorphologyPass &pass, const StructuringElement &element) {
  const ElementPlan plan = plan_columns(element, ~0U);
  if (plan.rows.empty()) {
    fill_rows(pass, 0xFF);
  } else {
    nox::masks::erode_general(pass, plan, element.anchor_x);
  }
}

// A column that fills its lane's top bit suppresses instead of setting pixels.
void dilate_any(const MorphologyPass &pass, const StructuringElement &element) {
  const std::uint32_t top = std::uint32_t{1} << (element.lane_bits - 1);
  const ElementPlan setting = plan_columns(element, ~top);
  if (setting.rows.empty()) {
    fill_rows(pass, 0);
    return;
  }
  nox::masks::dilate_general(pass, setting, element.anchor_x);
  const ElementPlan suppressing = plan_columns(element, top);
  if (suppressing.rows.empty()) return;
  nox::masks::suppress_general(pass, suppressing, element.anchor_x);
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
  element->rows = static_cast<std::uint8_t *>(nox_aligned_alloc(
      kNoxAlignment, static_cast<std::size_t>(std::max(height, 0)) * kElementRowBytes));
  const auto lane = static_cast<std::size_t>(std::clamp(element->lane_bytes, 1, 4));
  for (std::ptrdiff_t r = 0; r < height; ++r) {
    std::uint32_t pattern = 0;
    for (std::int32_t c = 0; c < std::min(width, 32); ++c) {
      if (members[r * width + c] != 0) pattern |= std::uint32_t{1} << c;
    }
    for (std::size_t i = 0; i < kElementRowBytes; ++i) {
      element->rows[r * kElementRowBytes + static_cast<std::ptrdiff_t>(i)] =
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
  if (src->width <= 0) return;
  const MorphologyPass pass = make_pass(dst, *src, *element);
  const bool dilate = operation == kBitmaskDilate;
  if (const auto *shape = nox::masks::find_known_shape(*element)) {
    (dilate ? shape->dilate : shape->erode)(pass);
  } else {
    (dilate ? dilate_any : erode_any)(pass, *element);
  }
}

void bitmask_erode(BitMask *dst, const BitMask *src, const StructuringElement *element) {
  bitmask_morph(dst, src, element, kBitmaskErode);
}

void bitmask_dilate(BitMask *dst, const BitMask *src, const StructuringElement *element) {
  bitmask_morph(dst, src, element, kBitmaskDilate);
}
