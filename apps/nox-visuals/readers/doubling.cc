#include "nox-visuals/readers/doubling.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace nox::app {
namespace {

constexpr std::ptrdiff_t kReach = 2;  // samples to either side that an interpolated one depends on

// The value a quarter of the way from b to c, when a and d lie to either side of them.
std::uint8_t interpolate(int a, int b, int c, int d) {
  return static_cast<std::uint8_t>(
      std::clamp((-9 * a + 111 * b + 29 * c - 3 * d + 64) >> 7, 0, 255));
}

// A row that lies a quarter of the way from rows[1] to rows[2].
void interpolate_rows(const std::array<const std::uint8_t *, 4> &rows, std::size_t width,
                      std::uint8_t *out) {
  for (std::size_t x = 0; x < width; ++x) {
    out[x] = interpolate(rows[0][x], rows[1][x], rows[2][x], rows[3][x]);
  }
}

// `row` has kReach samples before its first and behind its last one.
void double_row(const std::uint8_t *row, std::size_t width, std::uint8_t *out) {
  for (std::size_t x = 0; x < width; ++x) {
    const std::uint8_t *at = row + x;
    out[2 * x] = interpolate(at[1], at[0], at[-1], at[-2]);
    out[2 * x + 1] = interpolate(at[-1], at[0], at[1], at[2]);
  }
}

}  // namespace

void double_picture(const qr::Luma &picture, std::vector<std::uint8_t> *doubled) {
  const auto width = static_cast<std::size_t>(picture.width);
  const auto height = static_cast<std::size_t>(picture.height);
  doubled->resize(4 * width * height);
  // Beyond the border the last sample goes on.
  const auto row = [&picture](std::int32_t y) {
    return picture.samples + std::clamp(y, 0, picture.height - 1) * picture.stride;
  };
  std::vector<std::uint8_t> between(width + 2 * kReach);
  std::uint8_t *out = doubled->data();
  for (std::int32_t y = 0; y < picture.height; ++y) {
    for (const std::int32_t side : {-1, 1}) {
      interpolate_rows({row(y - side), row(y), row(y + side), row(y + 2 * side)}, width,
                       between.data() + kReach);
      std::fill_n(between.begin(), kReach, between[kReach]);
      std::fill_n(between.end() - kReach, kReach, between[kReach + width - 1]);
      double_row(between.data() + kReach, width, out);
      out += 2 * width;
    }
  }
}

}  // namespace nox::app
