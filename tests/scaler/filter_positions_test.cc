#include "scaler/filter_positions.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using nox::scaler::AxisPositions;
using nox::scaler::make_position_tables;
using nox::scaler::PositionTables;

std::vector<int> indices(const AxisPositions &axis, std::size_t x) {
  const auto taps = static_cast<std::size_t>(axis.taps);
  return {axis.indices.begin() + static_cast<std::ptrdiff_t>(x * taps),
          axis.indices.begin() + static_cast<std::ptrdiff_t>((x + 1) * taps)};
}

TEST(FilterPositions, AtRatioOneEachOutputIsItsOwnSource) {
  const PositionTables tables = make_position_tables({16, 8}, {16, 8}, 4);
  for (std::size_t x = 0; x < 16; ++x) EXPECT_EQ(tables.columns.phases[x], 0);
  EXPECT_EQ(indices(tables.columns, 0), (std::vector<int>{0, 0, 1, 2}));
  EXPECT_EQ(indices(tables.columns, 5), (std::vector<int>{4, 5, 6, 7}));
  EXPECT_EQ(indices(tables.columns, 15), (std::vector<int>{14, 15, 15, 15}));
}

TEST(FilterPositions, HalvingTakesTheMiddleOfTwoSamples) {
  const PositionTables tables = make_position_tables({32, 16}, {16, 8}, 8);
  EXPECT_EQ(tables.columns.phases[4], 8);
  EXPECT_EQ(indices(tables.columns, 4), (std::vector<int>{5, 6, 7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(tables.rows.out_count, 8);
}

TEST(FilterPositions, EnlargingStartsLeftOfTheFirstSample) {
  const PositionTables tables = make_position_tables({8, 8}, {16, 16}, 4);
  EXPECT_EQ(tables.columns.phases[0], 12);  // position -0.25
  EXPECT_EQ(indices(tables.columns, 0), (std::vector<int>{0, 0, 0, 1}));
  EXPECT_EQ(tables.columns.phases[1], 4);
}

TEST(FilterPositions, APhaseOfSixteenIsTheNextSample) {
  // 65 to 64: position x * 1.015625 + 0.0078125, whose fraction rounds up to 1 near the end.
  const PositionTables tables = make_position_tables({65, 65}, {64, 64}, 4);
  for (std::size_t x = 0; x < 64; ++x) EXPECT_LT(tables.columns.phases[x], 16);
  EXPECT_EQ(tables.columns.phases[63], 0);
  EXPECT_EQ(indices(tables.columns, 63), (std::vector<int>{63, 64, 64, 64}));
}

TEST(FilterPositions, HalfSizePlanesShareTheRatio) {
  const PositionTables tables = make_position_tables({65, 33}, {32, 16}, 4);
  EXPECT_EQ(tables.half_columns.in_count, 32);
  EXPECT_EQ(tables.half_columns.out_count, 16);
  EXPECT_EQ(tables.half_rows.in_count, 16);
  EXPECT_EQ(tables.half_rows.out_count, 8);
  for (std::size_t x = 0; x < 12; ++x) {
    EXPECT_EQ(tables.half_columns.phases[x], tables.columns.phases[x]);
    EXPECT_EQ(indices(tables.half_columns, x), indices(tables.columns, x));
  }
}

TEST(FilterPositions, AnEmptySideHasNoOutputs) {
  const PositionTables tables = make_position_tables({0, 1}, {8, 2}, 4);
  EXPECT_EQ(tables.columns.out_count, 0);
  EXPECT_EQ(tables.rows.out_count, 2);
  EXPECT_EQ(tables.half_rows.out_count, 0);
}

TEST(FilterPositions, PhasesAreZeroFilledToWholeVectors) {
  const PositionTables tables = make_position_tables({50, 50}, {40, 40}, 4);
  ASSERT_EQ(tables.columns.phases.size(), 32U + 32U);
  for (std::size_t x = 40; x < 64; ++x) EXPECT_EQ(tables.columns.phases[x], 0);
}

}  // namespace
