#include "vectorizer/frame_overlay.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <cstdint>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "support/quick.h"
#include "support/random.h"
#include "vectorizer/frame_overlay_plain.h"
#include "vectorizer/planar_frame.h"

namespace nox::test {
namespace {

using Samples = std::vector<std::uint8_t>;

class BlendRows : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(BlendRows);

// Alphas above 64 are outside the range that the overlay defines; the rows keep to the formula.
TEST_P(BlendRows, LumaIsExactForEveryTriple) {
  Samples src(256), dst(256), alpha(256);
  std::iota(src.begin(), src.end(), std::uint8_t{0});
  for (int a = 0; a < 256; a += quick() ? 21 : 1) {
    alpha.assign(256, static_cast<std::uint8_t>(a));
    for (int d = 0; d<256; d += a> 64 ? 15 : 1) {
      dst.assign(256, static_cast<std::uint8_t>(d));
      blend_row_luma(dst.data(), src.data(), alpha.data(), 256);
      for (int s = 0; s < 256; ++s) {
        ASSERT_EQ(dst[static_cast<std::size_t>(s)], blend_plain(d, s, a))
            << "dst " << d << " src " << s << " alpha " << a;
      }
    }
  }
}

TEST_P(BlendRows, ChromaTakesTheRoundedMeanOfEveryPairOfAlphas) {
  Samples dst(65), src(65), alpha(130);
  for (int first = 0; first < 256; first += quick() ? 5 : 1) {
    for (int second = 0; second<256; second += first> 64 ? 17 : 1) {
      for (std::size_t i = 0; i < 65; ++i) {
        dst[i] = static_cast<std::uint8_t>(255 - 3 * i);
        src[i] = static_cast<std::uint8_t>(4 * i);
        alpha[2 * i] = static_cast<std::uint8_t>(first);
        alpha[2 * i + 1] = static_cast<std::uint8_t>(second);
      }
      const Samples before = dst;
      blend_row_chroma(dst.data(), src.data(), alpha.data(), 65);
      for (std::size_t i = 0; i < 65; ++i) {
        ASSERT_EQ(dst[i], blend_plain(before[i], src[i], (first + second + 1) / 2));
      }
    }
  }
}

// Rows of every length, which end at an unreadable page.
TEST_P(BlendRows, TouchNothingBehindTheRow) {
  Random random(11);
  for (std::int32_t n = 0; n <= 200; ++n) {
    SCOPED_TRACE(n);
    GuardedPlane dst(n, 1, n), src(n, 1, n), alpha(2 * n, 1, 2 * n);
    random.fill(dst.data(), dst.size());
    random.fill(src.data(), src.size());
    for (std::size_t i = 0; i < alpha.size(); ++i) {
      alpha.data()[i] = static_cast<std::uint8_t>(random.between(0, 64));
    }
    const Samples before(dst.data(), dst.data() + n);
    blend_row_luma(dst.data(), src.data(), alpha.data() + n, n);
    for (std::int32_t i = 0; i < n; ++i) {
      const auto at = static_cast<std::size_t>(i);
      ASSERT_EQ(dst.data()[i], blend_plain(before[at], src.data()[i], alpha.data()[n + i]));
    }
    const Samples between(dst.data(), dst.data() + n);
    blend_row_chroma(dst.data(), src.data(), alpha.data(), n);
    for (std::int32_t i = 0; i < n; ++i) {
      const int a = (alpha.data()[2 * i] + alpha.data()[2 * i + 1] + 1) / 2;
      ASSERT_EQ(dst.data()[i], blend_plain(between[static_cast<std::size_t>(i)], src.data()[i], a));
    }
  }
}

TEST(BlendRow, LengthBelowOneDoesNothing) {
  std::uint8_t dst = 1;
  const std::uint8_t src = 2;
  constexpr std::uint8_t kAlphas[2] = {64, 64};
  for (const std::int32_t n : {0, -1}) {
    blend_row_luma(&dst, &src, kAlphas, n);
    blend_row_chroma(&dst, &src, kAlphas, n);
    EXPECT_EQ(dst, 1) << n;
  }
}

// Two pictures of one size and a plain twin of the destination.
struct Overlay {
  PlanarFrame dst, expected, src;

  void randomize(Random *random) {
    dst.randomize(random);
    expected.set_bytes(dst.bytes());
    src.randomize(random);
    if (src.get().n_planes < 4) return;
    GuardedPlane &alpha = src.plane(3);
    for (std::size_t i = 0; i < alpha.size(); ++i) alpha.data()[i] &= 63;
    if (random->chance(0.5)) alpha.fill(64);
  }
  void expect_same(std::int32_t x, std::int32_t y) {
    const Samples source = src.bytes();
    video_frame_overlay(&dst.get(), &src.get(), x, y);
    video_frame_overlay_plain(expected.get(), src.get(), x, y);
    ASSERT_EQ(dst.bytes(), expected.bytes()) << "at " << x << ", " << y;
    ASSERT_EQ(src.bytes(), source);
  }
};

// Every pair of sizes up to 5 by 5 at every position where the pictures meet, and just beyond.
TEST(VideoFrameOverlay, IsExactForSmallSizesAtEveryPosition) {
  Random random(12);
  const std::int32_t largest = quick() ? 3 : 5;
  for (std::int32_t sizes = 0; sizes < largest * largest * largest * largest; ++sizes) {
    const std::int32_t dst_width = sizes % largest + 1, src_width = sizes / largest % largest + 1;
    const std::int32_t dst_height = sizes / largest / largest % largest + 1;
    const std::int32_t src_height = sizes / largest / largest / largest + 1;
    SCOPED_TRACE(std::to_string(src_width) + " by " + std::to_string(src_height) + " on " +
                 std::to_string(dst_width) + " by " + std::to_string(dst_height));
    for (const std::uint32_t format : {kNoxFormatI420, kNoxFormatA420}) {
      const PlaneLayout layout = {sizes % 3, sizes % 2, sizes % 5 == 0};
      Overlay overlay = {{kNoxFormatI420, dst_width, dst_height, layout},
                         {kNoxFormatI420, dst_width, dst_height, layout},
                         {format, src_width, src_height, layout}};
      for (std::int32_t y = -src_height - 2; y <= dst_height + 1; ++y) {
        for (std::int32_t x = -src_width - 2; x <= dst_width + 1; ++x) {
          overlay.randomize(&random);
          overlay.expect_same(x, y);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(VideoFrameOverlay, IsExactForLargerSizes) {
  Random random(13);
  for (int round = 0; round < (quick() ? 20 : 300); ++round) {
    SCOPED_TRACE(round);
    const auto size = [&random] { return random.between(1, 150); };
    const PlaneLayout layout = {random.between(0, 9), random.between(0, 9), random.chance(0.3)};
    const std::int32_t width = size(), height = size();
    Overlay overlay = {{kNoxFormatI420, width, height, layout},
                       {kNoxFormatI420, width, height, layout},
                       {random.chance(0.8) ? kNoxFormatA420 : kNoxFormatI420, size(), size()}};
    overlay.randomize(&random);
    overlay.expect_same(random.between(-160, 160), random.between(-160, 160));
    if (HasFatalFailure()) return;
  }
}

// The planes go on behind the picture that the record tells; what lies there is not drawn.
TEST(VideoFrameOverlay, IsExactForRecordsThatTellLessThanTheirPlanesHold) {
  Random random(15);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const std::int32_t width = random.between(3, 12), height = random.between(3, 12);
    const std::uint32_t format = random.chance(0.7) ? kNoxFormatA420 : kNoxFormatI420;
    Overlay overlay = {{kNoxFormatI420, width, height},
                       {kNoxFormatI420, width, height},
                       {format, random.between(3, 12), random.between(3, 12)}};
    overlay.randomize(&random);
    NoxVideoFrame dst = overlay.dst.get(), expected = overlay.expected.get();
    NoxVideoFrame src = overlay.src.get();
    dst.width = expected.width -= random.between(0, 2);
    dst.height = expected.height -= random.between(0, 2);
    src.width -= random.between(0, 2);
    src.height -= random.between(0, 2);
    const std::int32_t x = random.between(-6, 10), y = random.between(-6, 10);
    video_frame_overlay(&dst, &src, x, y);
    video_frame_overlay_plain(expected, src, x, y);
    ASSERT_EQ(overlay.dst.bytes(), overlay.expected.bytes()) << "at " << x << ", " << y;
  }
}

TEST(VideoFrameOverlay, FarAwayPositionsDrawNothing) {
  constexpr std::int32_t kFar[] = {
      std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::min() + 1,
      std::numeric_limits<std::int32_t>::max() - 1, std::numeric_limits<std::int32_t>::max()};
  Random random(14);
  Overlay overlay = {{kNoxFormatI420, 6, 6}, {kNoxFormatI420, 6, 6}, {kNoxFormatA420, 4, 4}};
  for (const std::int32_t far : kFar) {
    for (const auto &[x, y] : {std::pair{far, 0}, {0, far}, {far, far}}) {
      overlay.randomize(&random);
      const Samples before = overlay.dst.bytes();
      video_frame_overlay(&overlay.dst.get(), &overlay.src.get(), x, y);
      EXPECT_EQ(overlay.dst.bytes(), before) << x << ", " << y;
    }
  }
}

// The first luma column that a white 4 by 4 picture covers on a black one, or -1.
int first_white_column(std::int32_t x) {
  PlanarFrame dst(kNoxFormatI420, 8, 8), src(kNoxFormatI420, 4, 4);
  dst.plane(0).fill(0);
  src.plane(0).fill(255);
  video_frame_overlay(&dst.get(), &src.get(), x, 0);
  for (int column = 0; column < 8; ++column) {
    if (dst.plane(0).row(0)[column] == 255) return column;
  }
  return -1;
}

TEST(VideoFrameOverlay, OddPositionsMoveOnByOne) {
  EXPECT_EQ(first_white_column(0), 0);
  EXPECT_EQ(first_white_column(1), 2);
  EXPECT_EQ(first_white_column(2), 2);
  EXPECT_EQ(first_white_column(3), 4);
}

TEST(VideoFrameOverlay, PositionMinusOneDrawsAtZeroUnclipped) {
  PlanarFrame dst(kNoxFormatI420, 8, 8), src(kNoxFormatI420, 4, 4);
  dst.plane(0).fill(0);
  src.plane(0).fill(0);
  src.plane(0).data()[0] = 77;
  video_frame_overlay(&dst.get(), &src.get(), -1, -1);
  EXPECT_EQ(dst.plane(0).data()[0], 77);
}

TEST(VideoFrameOverlay, AlphaReplacesLeavesAndMixes) {
  PlanarFrame dst(kNoxFormatI420, 4, 2), src(kNoxFormatA420, 4, 2);
  for (int p = 0; p < 3; ++p) {
    dst.plane(p).fill(255);
    src.plane(p).fill(10);
  }
  constexpr std::uint8_t kAlphas[4] = {64, 16, 0, 0};
  for (std::int32_t y = 0; y < 2; ++y) std::memcpy(src.plane(3).row(y), kAlphas, 4);
  video_frame_overlay(&dst.get(), &src.get(), 0, 0);
  EXPECT_EQ(dst.plane(0).data()[0], 10);
  EXPECT_EQ(dst.plane(0).data()[1], (255 * 48 + 10 * 16 + 32) >> 6);
  EXPECT_EQ(dst.plane(0).data()[2], 255);
  EXPECT_EQ(dst.plane(1).data()[0], (255 * 24 + 10 * 40 + 32) >> 6);
  EXPECT_EQ(dst.plane(2).data()[1], 255);
}

}  // namespace
}  // namespace nox::test
