// Which requests the vector filters serve, on every instruction set.
#include "scaler/filter_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "scaler/plane_filter.h"
#include "scaler/scaler.h"
#include "support/quick.h"

#define HWY_WANT_AVX3_DL  // as the kernels do
#include <hwy/tests/hwy_gtest.h>

namespace {

using nox::scaler::FilterCoefficients;
using nox::scaler::make_filter_coefficients;
using nox::scaler::make_plane_filter;
using nox::scaler::make_position_tables;
using nox::scaler::PositionTables;
using nox::scaler::RowStep;

// Whether both plane sizes of a frame are filtered by vectors.
bool served(ScalerSize in, ScalerSize out, double ratio, std::int32_t taps) {
  const FilterCoefficients coefficients =
      make_filter_coefficients(ratio, taps, scaler_kernel_lanczos2);
  const PositionTables all = make_position_tables(in, out, taps);
  return make_plane_filter(coefficients, all.columns, all.rows).has_value() &&
         make_plane_filter(coefficients, all.half_columns, all.half_rows).has_value();
}

class FilterPlan : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(FilterPlan);

TEST_P(FilterPlan, ServesEveryRatioThatIsFilteredDirectly) {
  for (int width = 200; width <= 1120; width += nox::test::quick() ? 23 : 1) {
    const double ratio = width / 448.0;
    const std::int32_t taps = ratio <= 1.625 ? 4 : 8;
    EXPECT_TRUE(served({width, width * 252 / 448}, {448, 252}, ratio, taps)) << "width " << width;
  }
}

TEST_P(FilterPlan, LeavesOtherLengthsToTheLookUpFilter) {
  EXPECT_FALSE(served({560, 315}, {448, 252}, 1.25, 5));
}

// No kernel has such weights; the vectors multiply signed bytes.
TEST_P(FilterPlan, LeavesWeightsThatFitNoSignedByte) {
  const PositionTables all = make_position_tables({64, 36}, {64, 36}, 4);
  using Taps = std::vector<std::int32_t>;
  const std::vector<std::pair<Taps, bool>> cases = {
      {{0, 128, 0, 0}, true},     {{4, 128, 0, -4}, false},    {{-32, 127, 33, 0}, true},
      {{-40, 129, 39, 0}, false}, {{127, 127, -126, 0}, true}, {{127, 127, 3, -129}, false}};
  for (const auto &[taps, fits] : cases) {
    FilterCoefficients coefficients = make_filter_coefficients(1.0, 4, scaler_kernel_lanczos2);
    for (auto &phase : coefficients.fixed_taps) std::copy(taps.begin(), taps.end(), phase);
    EXPECT_EQ(make_plane_filter(coefficients, all.columns, all.rows).has_value(), fits) << taps[1];
  }
}

TEST_P(FilterPlan, LeavesRowsShorterThanAWindow) {
  EXPECT_FALSE(served({15, 15}, {16, 16}, 0.9, 4));
}

TEST_P(FilterPlan, LeavesOutputsFurtherApartThanAWindow) {
  EXPECT_FALSE(served({4480, 200}, {448, 252}, 0.8, 4));
}

TEST_P(FilterPlan, LeavesIndicesThatWrap) {
  EXPECT_TRUE(served({65536, 64}, {65536, 64}, 1.0, 4));
  EXPECT_FALSE(served({65544, 64}, {65544, 64}, 1.0, 4));
}

TEST(PlanRows, AddsUpTheWeightsOfABorderRow) {
  const FilterCoefficients coefficients = make_filter_coefficients(1.0, 4, scaler_kernel_cubic);
  const PositionTables all = make_position_tables({64, 64}, {64, 64}, 4);
  const auto steps = nox::scaler::plan_rows(coefficients, all.rows);
  ASSERT_TRUE(steps.has_value());
  const std::int32_t *taps = coefficients.fixed_taps[0];
  const RowStep &first = steps->front();  // rows 0, 0, 1, 2
  EXPECT_EQ(first.first_pair, 0);
  EXPECT_EQ(first.count, 2);
  EXPECT_EQ(static_cast<std::int16_t>(first.weights[0]), taps[0] + taps[1]);
  EXPECT_EQ(first.weights[0] >> 16, taps[2]);
  EXPECT_EQ(static_cast<std::int16_t>(first.weights[1]), taps[3]);
  EXPECT_EQ(first.weights[1] >> 16, 0);
}

}  // namespace
