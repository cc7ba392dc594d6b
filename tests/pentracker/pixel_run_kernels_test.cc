// Lists of pixels from runs, for every instruction set at hand.
#include "pentracker/pixel_run_kernels.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "hwy/tests/hwy_gtest.h"
#include "support/guarded_plane.h"
#include "support/random.h"

namespace nox::test {
namespace {

using pentracker::PixelRun;

struct Lists {
  std::vector<PixelRun> runs;
  std::vector<std::int32_t> next;  // where each group's first run goes
  std::vector<BlobPixel> pixels;   // what is to come out
};

// `rows` rows of runs up to `longest` pixels long, which belong to three groups in turn at random.
Lists make_lists(std::int32_t rows, std::int32_t longest, Random *random) {
  constexpr std::int32_t kGroups = 3;
  Lists lists;
  std::vector<std::vector<BlobPixel>> of_group(kGroups);
  for (std::int32_t y = 0; y < rows; ++y) {
    const std::int32_t begin = random->between(0, 70);
    const PixelRun run{begin, begin + random->between(1, longest), y, random->between(0, 2)};
    lists.runs.push_back(run);
    for (std::int32_t x = run.begin; x < run.end; ++x) {
      of_group[static_cast<std::size_t>(run.group)].push_back({x, y});
    }
  }
  for (const auto &group : of_group) {
    lists.next.push_back(static_cast<std::int32_t>(lists.pixels.size()));
    lists.pixels.insert(lists.pixels.end(), group.begin(), group.end());
  }
  return lists;
}

class PixelRunsTest : public hwy::TestWithParamTarget {
 protected:
  // Memory that ends where the last pixel ends: nothing may be written behind it.
  void compare(const Lists &lists) {
    GuardedBytes memory(lists.pixels.size() * sizeof(BlobPixel));
    std::memset(memory.data(), 0xAB, memory.size());
    std::vector<std::int32_t> next = lists.next;
    pentracker::write_pixel_runs(lists.runs.data(), static_cast<std::int32_t>(lists.runs.size()),
                                 lists.pixels.size(), next.data(),
                                 reinterpret_cast<BlobPixel *>(memory.data()));
    EXPECT_EQ(std::memcmp(memory.data(), lists.pixels.data(), memory.size()), 0);
  }
};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(PixelRunsTest);

TEST_P(PixelRunsTest, WritesRunsOfEveryLengthInTheOrderOfTheirGroups) {
  Random random(9);
  for (std::int32_t longest = 1; longest < 120; ++longest) {
    SCOPED_TRACE("runs up to " + std::to_string(longest));
    compare(make_lists(20, longest, &random));
  }
}

TEST_P(PixelRunsTest, WritesVeryManyPixelsPastTheCache) {
  Random random(10);
  compare(make_lists(600, 500, &random));
}

}  // namespace
}  // namespace nox::test
