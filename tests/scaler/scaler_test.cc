#include "scaler/scaler.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstring>

#include "scaler/frame_fixture.h"
#include "scaler/scaler_plain.h"
#include "support/quick.h"
#include "support/random.h"

namespace {

using nox::test::Content;
using nox::test::GuardedFrame;

// The slots are called through their order, which is fixed.
static_assert(offsetof(ScalerOps, id) == 0 * sizeof(void *));
static_assert(offsetof(ScalerOps, init) == 1 * sizeof(void *));
static_assert(offsetof(ScalerOps, process) == 2 * sizeof(void *));
static_assert(offsetof(ScalerOps, supports) == 3 * sizeof(void *));
static_assert(offsetof(ScalerOps, reinit) == 4 * sizeof(void *));
static_assert(offsetof(ScalerOps, destroy) == 5 * sizeof(void *));
static_assert(offsetof(ScalerOps, taps) == 6 * sizeof(void *));

// Selects, checks result and sizes, and returns the implementation.
const ScalerOps *selected(ScalerSize in, ScalerSize out) {
  Scaler scaler;
  EXPECT_EQ(scaler_reset(&scaler), 0);
  const int result = scaler_select(&scaler, in, out);
  EXPECT_EQ(result, scaler.ops == &null_scaler ? 0 : 1);
  EXPECT_EQ(scaler.in_width, in.width);
  EXPECT_EQ(scaler.in_height, in.height);
  EXPECT_EQ(scaler.out_width, out.width);
  EXPECT_EQ(scaler.out_height, out.height);
  scaler_destroy(&scaler);
  EXPECT_EQ(scaler.priv, nullptr);
  return scaler.ops;
}

TEST(ScalerOpsTables, HaveTheirIdsAndSlots) {
  EXPECT_EQ(halve_scaler.id(), 0);
  EXPECT_EQ(separable_scaler.id(), 1);
  EXPECT_EQ(tiled_scaler.id(), 2);
  EXPECT_EQ(null_scaler.id(), -1);

  EXPECT_TRUE(!halve_scaler.init && halve_scaler.process && halve_scaler.supports &&
              !halve_scaler.reinit && !halve_scaler.destroy && !halve_scaler.taps);
  EXPECT_TRUE(separable_scaler.init && separable_scaler.process && separable_scaler.supports &&
              separable_scaler.reinit && separable_scaler.destroy && !separable_scaler.taps);
  EXPECT_TRUE(tiled_scaler.init && tiled_scaler.process && tiled_scaler.supports &&
              tiled_scaler.reinit && tiled_scaler.destroy && tiled_scaler.taps);
  EXPECT_TRUE(null_scaler.init && null_scaler.process && !null_scaler.supports &&
              !null_scaler.reinit && !null_scaler.destroy && !null_scaler.taps);
}

TEST(ScalerReset, ClearsTheWholeRecord) {
  int something = 0;
  Scaler scaler = {&tiled_scaler, 1, 2, 3, 4, &something};
  EXPECT_EQ(scaler_reset(&scaler), 0);
  EXPECT_EQ(scaler.ops, nullptr);
  EXPECT_EQ(scaler.in_width, 0);
  EXPECT_EQ(scaler.in_height, 0);
  EXPECT_EQ(scaler.out_width, 0);
  EXPECT_EQ(scaler.out_height, 0);
  EXPECT_EQ(scaler.priv, nullptr);
}

TEST(ScalerDestroy, OfAClearedRecordDoesNothing) {
  Scaler scaler = {};
  scaler_destroy(&scaler);
  EXPECT_EQ(scaler.ops, nullptr);
}

TEST(ScalerDestroy, KeepsImplementationAndSizesAndMayBeRepeated) {
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {640, 480}, {448, 252}), 1);
  EXPECT_NE(scaler.priv, nullptr);
  scaler_destroy(&scaler);
  scaler_destroy(&scaler);
  EXPECT_EQ(scaler.ops, &tiled_scaler);
  EXPECT_EQ(scaler.in_width, 640);
  EXPECT_EQ(scaler.priv, nullptr);
}

TEST(ScalerSelect, ExactHalvesAreBoxed) {
  EXPECT_EQ(selected({640, 480}, {320, 240}), &halve_scaler);
}

TEST(ScalerSelect, SameSizeIsCopiedAtAnyEvenWidth) {
  EXPECT_EQ(selected({640, 480}, {640, 480}), &halve_scaler);
  EXPECT_EQ(selected({2, 2}, {2, 2}), &halve_scaler);
}

TEST(ScalerSelect, OddOutputSizesAreRefused) {
  EXPECT_EQ(selected({640, 480}, {321, 240}), &null_scaler);
  EXPECT_EQ(selected({640, 480}, {320, 241}), &null_scaler);
  EXPECT_EQ(selected({321, 241}, {321, 241}), &null_scaler);
}

TEST(ScalerSelect, OddInputSizesAreFine) {
  EXPECT_EQ(selected({641, 481}, {320, 240}), &tiled_scaler);
}

TEST(ScalerSelect, ExactQuartersAreFiltered) {
  EXPECT_EQ(selected({1280, 720}, {320, 180}), &tiled_scaler);
}

TEST(ScalerSelect, ExactThirdsAreFiltered) {
  EXPECT_EQ(selected({96, 48}, {32, 16}), &tiled_scaler);
}

TEST(ScalerSelect, RatioTwoOnOneAxisOnlyIsFiltered) {
  EXPECT_EQ(selected({640, 480}, {328, 240}), &tiled_scaler);
}

TEST(ScalerSelect, MixedDirectionsAreSeparable) {
  EXPECT_EQ(selected({640, 480}, {320, 600}), &separable_scaler);
  EXPECT_EQ(selected({320, 600}, {640, 480}), &separable_scaler);
}

TEST(ScalerSelect, OneAxisUnchangedIsNotMixed) {
  EXPECT_EQ(selected({448, 480}, {448, 252}), &tiled_scaler);
  EXPECT_EQ(selected({448, 480}, {448, 600}), &tiled_scaler);
}

TEST(ScalerSelect, RatiosBeyondFortyAreSeparable) {
  EXPECT_EQ(selected({320, 80}, {8, 2}), &tiled_scaler);
  EXPECT_EQ(selected({321, 80}, {8, 2}), &separable_scaler);
  EXPECT_EQ(selected({4000, 100}, {80, 2}), &separable_scaler);
}

TEST(ScalerSelect, RatiosBeyond99999AreRefused) {
  EXPECT_EQ(selected({799992, 2}, {8, 2}), &separable_scaler);
  EXPECT_EQ(selected({799993, 2}, {8, 2}), &null_scaler);
}

TEST(ScalerSelect, WidthsThatAreNoMultipleOfEightAreRefused) {
  EXPECT_EQ(selected({640, 480}, {324, 240}), &null_scaler);
}

TEST(ScalerSelect, HalvesWhoseWidthIsNoMultipleOfSixteenAreFiltered) {
  EXPECT_EQ(selected({48, 32}, {24, 16}), &tiled_scaler);
}

TEST(ScalerSelect, SizesThatAreNotPositiveAreRefused) {
  EXPECT_EQ(selected({0, 0}, {448, 252}), &null_scaler);
  EXPECT_EQ(selected({-640, 480}, {448, 252}), &null_scaler);
  EXPECT_EQ(selected({640, 480}, {0, 252}), &null_scaler);
  EXPECT_EQ(selected({640, 480}, {448, INT_MIN}), &null_scaler);
}

TEST(ScalerSelect, RandomSizesMatchTheRules) {
  nox::test::Random random(41);
  const int count = nox::test::quick() ? 150 : 2000;
  for (int i = 0; i < count; ++i) {
    const int step = random.chance(0.8) ? 8 : 1;
    const ScalerSize out = {step * random.between(-1, 6), step * random.between(-1, 6)};
    const ScalerSize in = {random.chance(0.3) ? 2 * out.width : random.between(-1, 200),
                           random.chance(0.3) ? 2 * out.height : random.between(-1, 200)};
    SCOPED_TRACE(testing::Message() << "seed 41, try " << i << ": " << in.width << " by "
                                    << in.height << " to " << out.width << " by " << out.height);
    const int id = nox::test::select_plain({in.width, in.height, out.width, out.height});
    ASSERT_EQ(selected(in, out)->id(), id);
  }
}

TEST(ScalerSelect, ReselectionReleasesTheEarlierTables) {
  Scaler scaler = {};
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(scaler_select(&scaler, {640 + i, 480}, {448, 252}), 1);
    EXPECT_NE(scaler.priv, nullptr);
  }
  EXPECT_EQ(scaler_select(&scaler, {896, 504}, {448, 252}), 1);
  EXPECT_EQ(scaler.ops, &halve_scaler);
  EXPECT_EQ(scaler.priv, nullptr);
  EXPECT_EQ(scaler_select(&scaler, {640, 480}, {448, 252}), 1);
  EXPECT_EQ(scaler_select(&scaler, {640, 480}, {447, 252}), 0);
  EXPECT_EQ(scaler.ops, &null_scaler);
  EXPECT_EQ(scaler.priv, nullptr);
}

TEST(HalveSupports, ComparesProductsModulo32Bits) {
  // Of 131072 * 65536 and 65536 * 65536 nothing is left in 32 bits.
  EXPECT_TRUE(halve_scaler.supports({131072, 65536}, {65536, 65536 / 2}));
  EXPECT_TRUE(halve_scaler.supports({131072, 65536}, {65536, 65536}));
  EXPECT_FALSE(halve_scaler.supports({131072, 65536}, {65536, 65535}));
}

TEST(HalveSupports, EmptyOutputsDoNotDivide) {
  EXPECT_FALSE(halve_scaler.supports({16, 16}, {0, 0}));
  EXPECT_FALSE(halve_scaler.supports({INT_MIN, 16}, {-1, 16}));
}

TEST(ScalerProcess, WithTheNullImplementationLeavesTheDestination) {
  nox::test::Random random(42);
  GuardedFrame src;
  src.add(nox::test::make_picture(64, 48, Content::kNoise, random), 0);
  GuardedFrame dst;
  dst.add(33, 24, 3);
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {64, 48}, {33, 24}), 0);
  EXPECT_EQ(null_scaler.process(&scaler, &src.record(), &dst.record()), 0);
  scaler_process(&scaler, &src.record(), &dst.record());
  dst.expect(0, {});
}

TEST(ScalerProcess, OfADestroyedScalerLeavesTheDestination) {
  nox::test::Random random(43);
  GuardedFrame src;
  src.add(nox::test::make_picture(640, 480, Content::kNoise, random), 0);
  GuardedFrame dst;
  dst.add(448, 252, 0);
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {640, 480}, {448, 252}), 1);
  scaler_destroy(&scaler);
  scaler_process(&scaler, &src.record(), &dst.record());
  dst.expect(0, {});
}

// A record has room for four, whatever it says.
TEST(ScalerProcess, ResamplesFourPlanesAtMost) {
  nox::test::Random random(44);
  GuardedFrame src, dst;
  for (const int divisor : {1, 2, 2, 1}) {
    src.add(nox::test::make_picture(64 / divisor, 48 / divisor, Content::kNoise, random), 0);
    dst.add(32 / divisor, 24 / divisor, 0);
  }
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {64, 48}, {32, 24}), 1);
  NoxVideoFrame five = src.record();
  five.n_planes = 5;
  scaler_process(&scaler, &five, &dst.record());
  GuardedFrame expected;
  for (const int divisor : {1, 2, 2, 1}) expected.add(32 / divisor, 24 / divisor, 0);
  scaler_process(&scaler, &src.record(), &expected.record());
  for (int p = 0; p < 4; ++p) {
    const std::size_t bytes = p == 0 || p == 3 ? 32 * 24 : 16 * 12;
    EXPECT_EQ(std::memcmp(dst.record().planes[p], expected.record().planes[p], bytes), 0) << p;
  }
}

TEST(TiledTaps, TellsTheFilterLength) {
  Scaler scaler = {};
  scaler_select(&scaler, {320, 80}, {8, 2});  // residual 2.5
  EXPECT_EQ(tiled_scaler.taps(&scaler), 8);
  scaler_select(&scaler, {96, 48}, {40, 24});  // 2.4
  EXPECT_EQ(tiled_scaler.taps(&scaler), 8);
  scaler_select(&scaler, {64, 32}, {40, 24});  // 1.6
  EXPECT_EQ(tiled_scaler.taps(&scaler), 4);
  scaler_select(&scaler, {16, 16}, {40, 24});
  EXPECT_EQ(tiled_scaler.taps(&scaler), 4);
  scaler_destroy(&scaler);
  EXPECT_EQ(tiled_scaler.taps(&scaler), 0);
}

TEST(ScalerReinit, WithoutARecordFails) {
  Scaler scaler = {};
  EXPECT_EQ(tiled_scaler.reinit(&scaler), 0);
  EXPECT_EQ(separable_scaler.reinit(&scaler), 0);
}

TEST(ScalerReinit, RebuildsTheSameRecordForTheSizesStored) {
  nox::test::Random random(43);
  const nox::test::Picture picture = nox::test::make_picture(64, 48, Content::kNoise, random);
  GuardedFrame src;
  src.add(picture, 0);
  for (const ScalerOps *ops : {&tiled_scaler, &separable_scaler}) {
    Scaler scaler = {ops, 16, 16, 8, 6, nullptr};
    ASSERT_EQ(ops->init(&scaler), 1);
    const void *const priv = scaler.priv;
    scaler.in_width = 64;
    scaler.in_height = 48;
    scaler.out_width = 40;
    scaler.out_height = 26;
    EXPECT_EQ(ops->reinit(&scaler), 1);
    EXPECT_EQ(scaler.priv, priv);
    GuardedFrame dst;
    dst.add(40, 26, 0);
    EXPECT_EQ(ops->process(&scaler, &src.record(), &dst.record()), 1);
    dst.expect(0, ops == &tiled_scaler ? nox::test::tiled_plain(picture, {64, 48, 40, 26})
                                       : nox::test::separable_plain(picture, {64, 48, 40, 26}));
    ops->destroy(&scaler);
  }
}

}  // namespace
