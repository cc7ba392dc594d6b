// Doubled pictures beside the cubic of Catmull and Rom in plain words.
#include "nox-visuals/readers/doubling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/guarded_plane.h"
#include "support/random.h"

namespace nox::test {
namespace {

using app::double_picture;

double catmull_rom(double distance) {
  const double x = std::abs(distance);
  if (x < 1) return (1.5 * x - 2.5) * x * x + 1;
  if (x < 2) return ((-0.5 * x + 2.5) * x - 4) * x + 2;
  return 0;
}

// The value at `place`, in samples from the middle of the first one.
template <typename Sample>
int interpolated(Sample sample, int count, double place) {
  const int before = static_cast<int>(std::floor(place));
  double sum = 0;
  for (int i = before - 1; i <= before + 2; ++i) {
    sum += catmull_rom(place - i) * sample(std::clamp(i, 0, count - 1));
  }
  return std::clamp(static_cast<int>(std::floor(sum + 0.5)), 0, 255);
}

int doubled_plainly(const GuardedPlane &plane, int x, int y) {
  const auto between_rows = [&](int column) {
    return interpolated([&](int row) { return plane.row(row)[column]; }, plane.height(),
                        (y + 0.5) / 2 - 0.5);
  };
  return interpolated(between_rows, plane.width(), (x + 0.5) / 2 - 0.5);
}

TEST(Doubling, IsTheCubicRoundedAfterEachDirection) {
  Random random(5);
  for (const auto &[width, height] : {std::pair{1, 1}, {2, 1}, {1, 3}, {5, 4}, {31, 17}, {64, 9}}) {
    SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
    GuardedPlane plane(width, height, width + 3);
    random.fill(plane.data(), plane.size());
    std::vector<std::uint8_t> doubled;
    double_picture({plane.data(), plane.stride(), width, height}, &doubled);
    ASSERT_EQ(doubled.size(), static_cast<std::size_t>(4 * width * height));
    for (int y = 0; y < 2 * height; ++y) {
      for (int x = 0; x < 2 * width; ++x) {
        ASSERT_EQ(doubled[static_cast<std::size_t>(y * 2 * width + x)],
                  doubled_plainly(plane, x, y))
            << x << ", " << y;
      }
    }
  }
}

TEST(Doubling, StaysWithinASamplesRange) {
  GuardedPlane plane(8, 8, 8);
  for (int i = 0; i < 64; ++i) plane.data()[i] = (i + i / 8) % 2 == 0 ? 0 : 255;
  std::vector<std::uint8_t> doubled;
  double_picture({plane.data(), 8, 8, 8}, &doubled);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      const bool bright = doubled[static_cast<std::size_t>(16 * y + x)] > 127;
      EXPECT_EQ(bright, plane.row(y / 2)[x / 2] == 255) << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace nox::test
