#include "masks/morphology_plain.h"

#include <array>
#include <cstddef>

#include "masks/bitmask_plain.h"

namespace nox::test {
namespace {

struct Offset {
  std::int32_t x;
  std::int32_t y;
};

std::vector<Offset> members_of(const Shape &shape, bool last_column_only) {
  std::vector<Offset> members;
  for (std::int32_t r = 0; r < shape.height; ++r) {
    for (std::int32_t c = last_column_only ? shape.width - 1 : 0; c < shape.width; ++c) {
      if (shape.members[static_cast<std::size_t>(r * shape.width + c)] == 0) continue;
      members.push_back({c - shape.width / 2, r - shape.height / 2});
    }
  }
  return members;
}

// Pixels and stored bits of one mask as a pass sees them.
struct Source {
  const BitMask *mask;
  std::int32_t end;  // bits from here on read as 0

  bool at(std::int32_t x, std::int32_t y) const {
    if (x < 0 || x >= end || y < 0 || y >= mask->height) return false;
    return bit_plain(mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride, x) != 0;
  }
  bool any(const std::vector<Offset> &members, std::int32_t x, std::int32_t y) const {
    for (const Offset &m : members) {
      if (at(x + m.x, y + m.y)) return true;
    }
    return false;
  }
  bool all(const std::vector<Offset> &members, std::int32_t x, std::int32_t y) const {
    for (const Offset &m : members) {
      if (!at(x + m.x, y + m.y)) return false;
    }
    return true;
  }
};

using Bits128 = std::array<bool, 128>;

// The 128 bits from one lane in front of the strip on, moved so that bit 0 is the first column
// under the element.
Bits128 load_strip(const BitMask &src, std::int32_t y, std::int32_t start, std::int32_t lane,
                   std::int32_t anchor) {
  Bits128 bits{};
  if (y < 0 || y >= src.height) return bits;
  const std::uint8_t *row = src.data + static_cast<std::ptrdiff_t>(y) * src.stride;
  for (std::int32_t i = lane - anchor; i < 128; ++i) {
    const std::int32_t x = start - lane + i;
    if (x >= 0) bits[static_cast<std::size_t>(i - lane + anchor)] = bit_plain(row, x) != 0;
  }
  return bits;
}

struct LanePass {
  const Shape &shape;
  std::int32_t lane;
  bool dilate;

  // One output bit: the lane at `at`, one bit per element column and the rows ORed.
  int bit(const std::vector<Bits128> &window, std::int32_t at) const {
    std::int64_t collected = 0;
    for (std::int32_t r = 0; r < shape.height; ++r) {
      for (std::int32_t c = 0; c < shape.width; ++c) {
        if (shape.members[static_cast<std::size_t>(r * shape.width + c)] == 0) continue;
        const bool one =
            at + c < 128 && window[static_cast<std::size_t>(r)][static_cast<std::size_t>(at + c)];
        if (one == dilate) collected |= std::int64_t{1} << c;
      }
    }
    if (!dilate) return collected == 0 ? 1 : 0;
    const bool negative = (collected >> (lane - 1) & 1) != 0;
    return collected != 0 && !negative ? 1 : 0;
  }
};

}  // namespace

std::int32_t lane_bits_plain(std::int32_t width) {
  return width <= 8 ? 8 : width <= 16 ? 16 : 32;
}

std::int32_t written_bytes_plain(std::int32_t mask_width, std::int32_t lane_bits) {
  const std::int32_t step = 128 - 2 * lane_bits;
  return ((mask_width + step - 1) / step * step + 2 * lane_bits) / 8;
}

void morph_plain(BitMask *dst, const BitMask *src, const Shape &shape, bool dilate) {
  const std::int32_t lane = lane_bits_plain(shape.width);
  const std::int32_t written = written_bytes_plain(src->width, lane) * 8;
  const Source source{src, written - lane};
  const std::vector<Offset> members = members_of(shape, false);
  const bool suppressing = shape.width == 8 || shape.width == 16;
  const std::vector<Offset> last = members_of(shape, true);
  for (std::int32_t y = 0; y < src->height; ++y) {
    std::uint8_t *row = dst->data + static_cast<std::ptrdiff_t>(y) * dst->stride;
    for (std::int32_t x = 0; x < written; ++x) {
      bool one = dilate ? source.any(members, x, y) : source.all(members, x, y);
      if (dilate && suppressing && source.any(last, x, y)) one = false;
      set_bit_plain(row, x, one ? 1 : 0);
    }
  }
}

void morph_strips_plain(BitMask *dst, const BitMask *src, const Shape &shape, bool dilate) {
  const std::int32_t lane = lane_bits_plain(shape.width);
  const std::int32_t step = 128 - 2 * lane;
  const LanePass pass{shape, lane, dilate};
  std::vector<Bits128> window(static_cast<std::size_t>(shape.height));
  for (std::int32_t start = 0; start < src->width; start += step) {
    for (std::int32_t y = 0; y < src->height; ++y) {
      for (std::int32_t r = 0; r < shape.height; ++r) {
        window[static_cast<std::size_t>(r)] =
            load_strip(*src, y + r - shape.height / 2, start, lane, shape.width / 2);
      }
      std::uint8_t *row = dst->data + static_cast<std::ptrdiff_t>(y) * dst->stride;
      for (std::int32_t i = 0; i < 128; ++i) set_bit_plain(row, start + i, pass.bit(window, i));
    }
  }
}

}  // namespace nox::test
