// The box scaler and its row kernels against the plain one, on every instruction set.
#include <gtest/gtest.h>

#include <vector>

#include "scaler/box_kernels.h"
#include "scaler/frame_fixture.h"
#include "scaler/scaler.h"
#include "scaler/scaler_plain.h"
#include "support/quick.h"
#include "support/random.h"

#define HWY_WANT_AVX3_DL  // as the kernels do
#include <hwy/tests/hwy_gtest.h>

namespace {

using nox::test::Content;
using nox::test::GuardedFrame;
using nox::test::GuardedPlane;
using nox::test::Picture;

class BoxScaler : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(BoxScaler);

class BoxKernels : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(BoxKernels);

TEST_P(BoxKernels, EveryWidthMatchesThePlainMeans) {
  nox::test::Random random(51);
  const int most = nox::test::quick() ? 80 : 300;
  for (int h = 0; h <= nox::scaler::kMaxHalvings; ++h) {
    const int factor = 1 << h;
    const nox::scaler::ReduceRow reduce_row = nox::scaler::box_kernels().reduce_row[h];
    for (int width = 1; width <= most; ++width) {
      SCOPED_TRACE(testing::Message() << "seed 51, factor " << factor << ", width " << width);
      const Picture src = make_picture(
          width * factor, factor, width % 2 == 0 ? Content::kNoise : Content::kExtremes, random);
      GuardedFrame from;
      from.add(src, width % 7);
      GuardedFrame to;
      to.add(width, 1, 0);
      reduce_row(from.record().planes[0], from.record().strides[0], static_cast<std::size_t>(width),
                 to.record().planes[0]);
      to.expect(0, nox::test::box_plain(src, factor, width, 1));
    }
  }
}

TEST_P(BoxKernels, LargestSumsDoNotOverflow) {
  for (int h = 1; h <= nox::scaler::kMaxHalvings; ++h) {
    GuardedPlane src(64 << h, 1 << h, 64 << h);
    src.fill(255);
    GuardedPlane dst(64, 1, 64);
    dst.fill(0);
    nox::scaler::box_kernels().reduce_row[h](src.data(), src.stride(), 64, dst.data());
    for (int x = 0; x < 64; ++x) ASSERT_EQ(int{dst.data()[x]}, 255) << "halvings " << h;
  }
}

// All planes of a 4:2:0 frame of `factor` times the given size, through the table.
void expect_frame(int factor, int width, int height, int padding, nox::test::Random &random) {
  SCOPED_TRACE(testing::Message() << "factor " << factor << ", to " << width << " by " << height);
  GuardedFrame src;
  GuardedFrame dst;
  std::vector<Picture> wanted;
  for (int p = 0; p < 3; ++p) {
    const int w = p == 0 ? width : width / 2;
    const int h = p == 0 ? height : height / 2;
    const Picture picture =
        make_picture(w * factor, h * factor, static_cast<Content>(p % 2), random);
    src.add(picture, padding);
    dst.add(w, h, padding);
    wanted.push_back(nox::test::box_plain(picture, factor, w, h));
  }
  EXPECT_EQ(halve_scaler.process(nullptr, &src.record(), &dst.record()), 1);
  for (std::size_t p = 0; p < wanted.size(); ++p) dst.expect(p, wanted[p]);
}

TEST_P(BoxScaler, EveryFactor) {
  nox::test::Random random(52);
  for (int factor = 1; factor <= 18; ++factor) expect_frame(factor, 80, 6, factor % 3, random);
  expect_frame(40, 6, 4, 0, random);
}

TEST_P(BoxScaler, EveryEvenWidthHalved) {
  nox::test::Random random(53);
  for (int width = 2; width <= 400; width += 2) expect_frame(2, width, 4, width % 5, random);
}

TEST_P(BoxScaler, ChromaOf168ColumnsEndsInEightHorizontalFirst) {
  nox::test::Random random(54);
  expect_frame(2, 336, 8, 0, random);
}

TEST_P(BoxScaler, TheLastColumnsAreAveragedHorizontallyFirst) {
  // Blocks of 0, 0 / 1, 3: rows first gives avg(1, 2) = 2, columns first avg(0, 2) = 1.
  GuardedFrame src;
  GuardedPlane &from = src.add(2 * 24, 2, 0);
  from.fill(0);
  for (int x = 0; x < 24; ++x) {
    from.row(1)[2 * x] = 1;
    from.row(1)[2 * x + 1] = 3;
  }
  GuardedFrame dst;
  GuardedPlane &to = dst.add(24, 1, 0);
  halve_scaler.process(nullptr, &src.record(), &dst.record());
  for (int x = 0; x < 24; ++x) ASSERT_EQ(int{to.row(0)[x]}, x < 16 ? 2 : 1) << "x " << x;
}

TEST_P(BoxScaler, FactorOneCopiesAndLeavesPadding) {
  nox::test::Random random(55);
  expect_frame(1, 37, 9, 11, random);
}

TEST_P(BoxScaler, FourSamplesToOne) {
  nox::test::Random random(57);
  const Picture picture = make_picture(2, 2, Content::kNoise, random);
  GuardedFrame src;
  src.add(picture, 0);
  GuardedFrame dst;
  dst.add(1, 1, 0);
  EXPECT_EQ(halve_scaler.process(nullptr, &src.record(), &dst.record()), 1);
  dst.expect(0, nox::test::box_plain(picture, 2, 1, 1));
}

TEST_P(BoxScaler, FullHdHalved) {
  nox::test::Random random(56);
  const Picture picture = make_picture(1920, 1080, Content::kNoise, random);
  GuardedFrame src;
  src.add(picture, 0);
  GuardedFrame dst;
  dst.add(960, 540, 0);
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {1920, 1080}, {960, 540}), 1);
  ASSERT_EQ(scaler.ops, &halve_scaler);
  scaler_process(&scaler, &src.record(), &dst.record());
  dst.expect(0, nox::test::box_plain(picture, 2, 960, 540));
}

TEST(BoxScalerFrames, ThatDoNotFitAreLeftAlone) {
  GuardedFrame src;
  src.add(32, 32, 0).fill(7);
  GuardedFrame dst;
  dst.add(64, 64, 0);  // larger than the source: no factor
  EXPECT_EQ(halve_scaler.process(nullptr, &src.record(), &dst.record()), 1);
  dst.expect(0, {});

  GuardedFrame small;
  small.add(16, 17, 0);  // twice 17 rows are more than there are
  EXPECT_EQ(halve_scaler.process(nullptr, &src.record(), &small.record()), 1);
  small.expect(0, {});

  NoxVideoFrame empty = {};
  EXPECT_EQ(halve_scaler.process(nullptr, &src.record(), &empty), 1);
}

}  // namespace
