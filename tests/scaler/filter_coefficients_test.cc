#include "scaler/filter_coefficients.h"

#include <gtest/gtest.h>

#include <vector>

#include "scaler/scaler.h"
#include "scaler/scaler_plain.h"
#include "support/quick.h"

namespace {

using nox::scaler::FilterCoefficients;
using nox::scaler::make_filter_coefficients;

TEST(ScalerKernels, HaveTheirKnownValues) {
  EXPECT_DOUBLE_EQ(scaler_kernel_lanczos2(0.0), 1.0);
  EXPECT_EQ(scaler_kernel_lanczos2(1.0), 0.0);
  EXPECT_EQ(scaler_kernel_lanczos2(2.0), 0.0);
  EXPECT_EQ(scaler_kernel_lanczos2(2.5), 0.0);
  EXPECT_NEAR(scaler_kernel_lanczos2(0.5), 0.573159, 1e-6);
  EXPECT_NEAR(scaler_kernel_lanczos2(-1.5), -0.063684, 1e-6);
  EXPECT_DOUBLE_EQ(scaler_kernel_cubic(0.0), 16.0 / 3.0);
  EXPECT_NEAR(scaler_kernel_cubic(1.0), 1.0 / 3.0, 1e-14);
  EXPECT_NEAR(scaler_kernel_cubic(-1.0), 1.0 / 3.0, 1e-14);
  EXPECT_EQ(scaler_kernel_cubic(2.0), 0.0);
  EXPECT_EQ(scaler_kernel_cubic(-3.0), 0.0);
  EXPECT_NEAR(scaler_kernel_cubic(1.5), -0.208333, 1e-6);
}

TEST(FilterCoefficients, AtRatioOnePhaseZeroIsTheIdentity) {
  const FilterCoefficients table = make_filter_coefficients(1.0, 4, scaler_kernel_lanczos2);
  EXPECT_EQ(table.shift, 7);
  EXPECT_EQ(table.phases, 16);
  const std::vector<int> taps(table.fixed_taps[0], table.fixed_taps[0] + 4);
  EXPECT_EQ(taps, (std::vector<int>{0, 128, 0, 0}));
}

TEST(FilterCoefficients, EveryPhaseSumsToOneAndMatchesThePlainTaps) {
  for (int i = 1; i <= 1000; i += nox::test::quick() ? 19 : 1) {
    const double ratio = i * 0.01;
    for (const bool lanczos : {false, true}) {
      for (const int taps : {4, 5, 7, 8, 11, 32}) {
        const FilterCoefficients table = make_filter_coefficients(
            ratio, taps, lanczos ? scaler_kernel_lanczos2 : scaler_kernel_cubic);
        // An odd length is lopsided: a narrow kernel may miss all of its taps but one.
        const std::vector<std::vector<int>> plain = nox::test::taps_plain(ratio, taps, lanczos);
        for (std::size_t p = 0; p < 16; ++p) {
          const std::vector<int> fixed(table.fixed_taps[p], table.fixed_taps[p] + taps);
          ASSERT_EQ(fixed, plain[p]) << "ratio " << ratio << ", phase " << p << ", taps " << taps;
          int sum = 0;
          for (const int tap : fixed) sum += tap;
          ASSERT_EQ(sum, taps == 8 ? 64 : 128);
        }
      }
    }
  }
}

TEST(FilterCoefficients, FloatTapsKeepTheirCorrections) {
  const FilterCoefficients table = make_filter_coefficients(1.43, 4, scaler_kernel_cubic);
  for (int p = 0; p < 16; ++p) {
    for (int t = 0; t < 4; ++t) {
      // A tap that was corrected is exact; every other lies within half a step.
      EXPECT_LE(std::abs(table.float_taps[p][t] * 128.0 - table.fixed_taps[p][t]), 0.5);
    }
    for (int t = 4; t < nox::scaler::kMaxTaps; ++t) EXPECT_EQ(table.fixed_taps[p][t], 0);
  }
}

// What the 8-bit kernels build upon.
TEST(FilterCoefficients, UsedRatiosFitEightBitsAndKeepSumsInSixteen) {
  for (int i = 0; i <= 25000; i += nox::test::quick() ? 97 : 1) {
    const double ratio = i * 0.0001 + 1e-6;
    const int taps = ratio <= 1.625 ? 4 : 8;
    for (const bool lanczos : {false, true}) {
      const FilterCoefficients table = make_filter_coefficients(
          ratio, taps, lanczos ? scaler_kernel_lanczos2 : scaler_kernel_cubic);
      for (int p = 0; p < 16; ++p) {
        int pairs[4] = {};
        int sum = 0;
        int others = 0;
        bool one = false;
        for (int t = 0; t < taps; ++t) {
          const int tap = table.fixed_taps[p][t];
          ASSERT_GE(tap, -11);
          ASSERT_LE(tap, 128);
          one = one || tap == 128;
          others += tap != 128 && tap != 0 ? 1 : 0;
          pairs[t / 2] += tap > 0 ? 255 * tap : 0;
          sum += tap > 0 ? 255 * tap : 0;
        }
        ASSERT_EQ(one ? others : 0, 0) << "ratio " << ratio;
        for (const int pair : pairs) ASSERT_LE(pair, 32767) << "ratio " << ratio;
        ASSERT_LE(taps == 8 ? sum : 0, 32767) << "ratio " << ratio;
      }
    }
  }
}

}  // namespace
