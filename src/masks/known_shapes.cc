#include "masks/known_shapes.h"

#include <bit>
#include <cstddef>
#include <cstring>

#include "masks/morphology_shapes.h"

namespace nox::masks {

namespace {

constexpr KnownShape kKnownShapes[] = {
    {kBox3.width, kBox3.rows, erode_box3, dilate_box3},
    {kCross3.width, kCross3.rows, erode_cross3, dilate_cross3},
    {kDisc15.width, kDisc15.rows, erode_disc15, dilate_disc15},
};

}  // namespace

std::uint32_t row_pattern(const StructuringElement &element, std::int32_t row) {
  static_assert(kElementRowBytes >= sizeof(std::uint32_t) &&
                std::endian::native == std::endian::little);
  std::uint32_t pattern;
  std::memcpy(&pattern, element.rows + static_cast<std::ptrdiff_t>(row) * kElementRowBytes,
              sizeof(pattern));
  return pattern & ((std::uint32_t{1} << element.width) - 1);
}

const KnownShape *find_known_shape(const StructuringElement &element) {
  for (const KnownShape &shape : kKnownShapes) {
    const auto height = static_cast<std::int32_t>(shape.rows.size());
    if (element.width != shape.width || element.height != height) continue;
    if (element.anchor_x != shape.width / 2 || element.anchor_y != height / 2) continue;
    std::int32_t r = 0;
    while (r < height && row_pattern(element, r) == shape.rows[static_cast<std::size_t>(r)]) ++r;
    if (r == height) return &shape;
  }
  return nullptr;
}

}  // namespace nox::masks
