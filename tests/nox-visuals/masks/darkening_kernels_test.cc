// Darkening against its plain form, bit for bit, for every instruction set at hand.
#include "nox-visuals/masks/darkening_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "hwy/tests/hwy_gtest.h"
#include "nox-visuals/masks/darkening_plain.h"
#include "support/guarded_plane.h"
#include "support/random.h"

namespace nox::test {
namespace {

class DarkeningKernelsTest : public hwy::TestWithParamTarget {
 protected:
  Random random_{31};
};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(DarkeningKernelsTest);

TEST_P(DarkeningKernelsTest, RowsThatEndAtAnUnreadablePage) {
  for (std::size_t samples = 0; samples <= 300; ++samples) {
    for (const int darker : {0, 1, 30, 50, 200, 255}) {
      GuardedBytes row(samples);
      random_.fill(row.data(), samples);
      std::vector<std::uint8_t> expected(row.data(), row.data() + samples);
      app::masks::darken_row(row.data(), samples, static_cast<std::uint8_t>(darker), 16);
      app::masks::darken_row_plain(expected.data(), samples, static_cast<std::uint8_t>(darker), 16);
      ASSERT_TRUE(std::equal(expected.begin(), expected.end(), row.data()))
          << samples << " samples, " << darker;
    }
  }
}

TEST_P(DarkeningKernelsTest, EverySampleAtEveryLevel) {
  for (int darker = 0; darker < 256; ++darker) {
    std::vector<std::uint8_t> row(256);
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = static_cast<std::uint8_t>(i);
    std::vector<std::uint8_t> expected = row;
    app::masks::darken_row(row.data(), row.size(), static_cast<std::uint8_t>(darker), 16);
    app::masks::darken_row_plain(expected.data(), row.size(), static_cast<std::uint8_t>(darker),
                                 16);
    ASSERT_EQ(row, expected) << darker;
  }
}

}  // namespace
}  // namespace nox::test
