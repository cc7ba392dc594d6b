#include "masks/mask_maker.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace nox::test {
namespace {

constexpr std::ptrdiff_t kBorder = 4;

std::uint8_t fill_byte(Fill fill, Random *random) {
  const auto any = static_cast<std::uint8_t>(random->bits());
  switch (fill) {
    case Fill::kEmpty:
      return 0;
    case Fill::kFull:
      return 0xFF;
    case Fill::kSparse:
      return static_cast<std::uint8_t>(random->chance(0.05) ? 1 << (any % 8) : 0);
    case Fill::kDense:
      return static_cast<std::uint8_t>(random->chance(0.05) ? ~(1 << (any % 8)) : 0xFF);
    case Fill::kRandom:
      return any;
  }
  return 0;
}

}  // namespace

GuardedMask::GuardedMask(std::int32_t width, std::int32_t height)
    : bytes_(static_cast<std::size_t>(make_mask(width, height)->size)),
      mask_(*make_mask(width, height)) {
  mask_.block = bytes_.data();
  mask_.data = mask_.block + kBorder;
}

void fill_mask(BitMask *mask, Fill fill, Random *random) {
  std::memset(mask->block, 0, static_cast<std::size_t>(mask->size));
  for (std::ptrdiff_t y = 0; y < mask->height; ++y) {
    std::uint8_t *row = mask->data + y * mask->stride;
    random->fill(row, static_cast<std::size_t>(mask->stride - kBorder));
    for (std::int32_t x = 0; x < mask->width; x += 8) {
      const int keep = ~((1 << std::min(mask->width - x, 8)) - 1);
      const int pixels = fill_byte(fill, random) & ~keep;
      row[x / 8] = static_cast<std::uint8_t>((row[x / 8] & keep) | pixels);
    }
  }
}

void clear_behind_width(BitMask *mask) {
  for (std::ptrdiff_t y = 0; y < mask->height; ++y) {
    std::uint8_t *row = mask->data + y * mask->stride;
    for (std::int32_t x = mask->width; x < static_cast<std::int32_t>(mask->stride - kBorder) * 8;
         ++x) {
      row[x / 8] = static_cast<std::uint8_t>(row[x / 8] & ~(1 << (x % 8)));
    }
  }
}

std::vector<std::uint8_t> block_bytes(const BitMask &mask) {
  return {mask.block, mask.block + mask.size};
}

std::vector<std::string> mask_rows(const BitMask &mask) {
  std::vector<std::string> rows;
  for (std::int32_t y = 0; y < mask.height; ++y) {
    std::string row;
    for (std::int32_t x = 0; x < mask.width; ++x) row += bitmask_get(&mask, x, y) ? '#' : '.';
    rows.push_back(row);
  }
  return rows;
}

}  // namespace nox::test
