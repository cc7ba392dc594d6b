#include "vectorizer/edge_kernels.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "support/guarded_plane.h"
#include "support/quick.h"
#include "support/random.h"
#include "vectorizer/bit_row_memory.h"
#include "vectorizer/vectorizer_plain.h"
#include "video/nox_video_frame.h"

namespace nox::test {
namespace {

class EdgeKernels : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(EdgeKernels);

NoxVideoFrame luma_frame(GuardedPlane *plane) {
  NoxVideoFrame frame{};
  frame.width = plane->width();
  frame.height = plane->height();
  frame.planes[0] = plane->data();
  frame.strides[0] = plane->stride();
  return frame;
}

void expect_edges_as_plain(GuardedPlane *plane) {
  const std::int32_t rows = plane->height() - 3;
  const BitRowMemory edges(plane->width(), rows);
  for (std::int32_t x = 0; x < plane->width() - 3; ++x) edges.set(x, 0, true);
  vectorizer::find_edges(plane->data(), plane->stride(), plane->width(),
                         static_cast<std::ptrdiff_t>(plane->size()), edges.rows());
  const PlainMask expected = edges_plain(luma_frame(plane));
  const auto row_bits = static_cast<std::int32_t>(edges.rows().words * 64);
  for (std::int32_t y = 0; y < rows; ++y) {
    for (std::int32_t x = 0; x < row_bits; ++x) {
      const bool inside = x < plane->width() - 3;
      ASSERT_EQ(edges.get(x, y), inside && expected.get(x + 1, y + 1)) << x << ", " << y;
    }
  }
}

// Samples near each other, so that many gradients are close to the threshold.
void fill_smooth(GuardedPlane *plane, Random *random) {
  const int middle = random->between(0, 255), reach = random->between(1, 40);
  for (std::size_t i = 0; i < plane->size(); ++i) {
    const int value = middle + random->between(-reach, reach);
    plane->data()[i] = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
  }
}

TEST(BitRows, RowsAreWholeBlocksOf512Bits) {
  for (const auto &[width, words] :
       {std::pair(1, 8U), {64, 8U}, {512, 8U}, {513, 16U}, {1025, 24U}}) {
    EXPECT_EQ(vectorizer::block_row_words(width), words) << width;
  }
}

TEST_P(EdgeKernels, FindEdgesMatchesPlainAtEveryWidth) {
  Random random(21);
  for (std::int32_t width = 4; width <= 300; width += quick() ? 13 : 1) {
    SCOPED_TRACE(width);
    GuardedPlane plane(width, random.between(4, 8), width + random.between(0, 5));
    fill_smooth(&plane, &random);
    expect_edges_as_plain(&plane);
    random.fill(plane.data(), plane.size());
    expect_edges_as_plain(&plane);
    if (HasFatalFailure()) return;
  }
}

// Extreme sums: samples of only 0 and 255 reach every multiple of 255 up to 1020 in both
// directions.
TEST_P(EdgeKernels, FindEdgesMatchesPlainOnBlackAndWhite) {
  Random random(22);
  for (int round = 0; round < (quick() ? 3 : 40); ++round) {
    GuardedPlane plane(260, 20, 260);
    for (std::size_t i = 0; i < plane.size(); ++i) plane.data()[i] = random.chance(0.5) ? 255 : 0;
    expect_edges_as_plain(&plane);
    if (HasFatalFailure()) return;
  }
}

// Every pair of sums (s_x, s_y) up to 40, and every s_x up to 1020: the samples above, left and at
// the corners are chosen so that they come out.
void set_sums(GuardedPlane *plane, std::int32_t x, int sum_x, int sum_y) {
  // A 3 by 3 patch with s_x = nw + 2 w + sw - e's and s_y likewise, from one corner and two sides.
  const auto at = [plane, x](int column, int row) -> std::uint8_t & {
    return plane->row(row)[x + column];
  };
  const bool odd = (sum_x - sum_y) % 2 != 0;
  at(0, 0) = odd || sum_x % 2 != 0 ? 1 : 0;  // nw: adds to both sums
  int rest_x = sum_x - at(0, 0), rest_y = sum_y - at(0, 0);
  if (odd && rest_x % 2 != 0) {
    at(0, 2) = 1, --rest_x, ++rest_y;  // sw: adds to s_x and takes from s_y
  } else if (odd) {
    at(2, 0) = 1, ++rest_x, --rest_y;  // ne: the other way round
  }
  at(rest_x > 0 ? 0 : 2, 1) = static_cast<std::uint8_t>(std::abs(rest_x) / 2);
  at(1, rest_y > 0 ? 0 : 2) = static_cast<std::uint8_t>(std::abs(rest_y) / 2);
}

TEST_P(EdgeKernels, FindEdgesIsExactAroundTheThreshold) {
  constexpr int kReach = 40;
  constexpr int kSums = 2 * kReach + 1;
  for (int sum_y = -kReach; sum_y <= kReach; ++sum_y) {
    GuardedPlane plane(4 * kSums + 4, 4, 4 * kSums + 4);
    plane.fill(0);
    for (int i = 0; i < kSums; ++i) set_sums(&plane, 4 * i, i - kReach, sum_y);
    const BitRowMemory edges(plane.width(), 1);
    vectorizer::find_edges(plane.data(), plane.stride(), plane.width(),
                           static_cast<std::ptrdiff_t>(plane.size()), edges.rows());
    for (int i = 0; i < kSums; ++i) {
      const int sum_x = i - kReach;
      const std::uint8_t *top = plane.row(0) + 4 * i, *middle = plane.row(1) + 4 * i;
      const std::uint8_t *bottom = plane.row(2) + 4 * i;
      const int s_x = top[0] + 2 * middle[0] + bottom[0] - top[2] - 2 * middle[2] - bottom[2];
      const int s_y = top[0] + 2 * top[1] + top[2] - bottom[0] - 2 * bottom[1] - bottom[2];
      ASSERT_LE(std::abs(s_x - sum_x) + std::abs(s_y - sum_y), 2);
      ASSERT_EQ(edges.get(4 * i, 0), s_x * s_x + s_y * s_y >= 666) << s_x << ", " << s_y;
    }
  }
}

TEST_P(EdgeKernels, CloseEdgesMatchesPlain) {
  Random random(24);
  for (std::int32_t width = 4; width <= 700; width += quick() ? 31 : 3) {
    SCOPED_TRACE(width);
    const std::int32_t rows = random.between(1, 9);
    const double density = random.between(1, 9) / 10.0;
    // Bit k of a row of edges is column k + 1; the last two columns and the first one have none.
    const BitRowMemory edges(width, rows + 4), dilated(width, rows + 2), closed(width, rows);
    PlainMask mask(width, rows + 4);
    for (std::int32_t y = 0; y < rows + 4; ++y) {
      for (std::int32_t x = 1; x <= width - 3; ++x) {
        mask.set(x, y, random.chance(density));
        edges.set(x - 1, y, mask.get(x, y));
      }
    }
    vectorizer::close_edges(edges.rows(), dilated.rows(), closed.rows());
    const PlainMask expected = close_plain(mask);
    const auto row_bits = static_cast<std::int32_t>(closed.rows().words * 64);
    for (std::int32_t y = 0; y < rows; ++y) {
      for (std::int32_t x = 0; x < row_bits; ++x) {
        ASSERT_EQ(closed.get(x, y), x < width && expected.get(x, y + 2)) << x << ", " << y;
      }
    }
  }
}

}  // namespace
}  // namespace nox::test
