// Lists of pixels from blocks, for every instruction set at hand.
#include "pentracker/pixel_block_kernels.h"

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

using pentracker::PixelBlock;

struct Lists {
  std::vector<PixelBlock> blocks;
  std::vector<std::int32_t> next;  // where each group's first block goes
  std::vector<BlobPixel> pixels;   // what is to come out
};

// Blocks of up to `widest` by `highest` pixels, which belong to three groups in turn at random.
Lists make_lists(std::int32_t count, std::int32_t widest, std::int32_t highest, Random *random) {
  constexpr std::int32_t kGroups = 3;
  Lists lists;
  std::vector<std::vector<BlobPixel>> of_group(kGroups);
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t begin = random->between(0, 70);
    const std::int32_t top = random->between(0, 70);
    const PixelBlock block{begin, begin + random->between(1, widest), top,
                           top + random->between(0, highest - 1), random->between(0, kGroups - 1)};
    lists.blocks.push_back(block);
    for (std::int32_t y = block.top; y <= block.bottom; ++y) {
      for (std::int32_t x = block.begin; x < block.end; ++x) {
        of_group[static_cast<std::size_t>(block.group)].push_back({x, y});
      }
    }
  }
  for (const auto &group : of_group) {
    lists.next.push_back(static_cast<std::int32_t>(lists.pixels.size()));
    lists.pixels.insert(lists.pixels.end(), group.begin(), group.end());
  }
  return lists;
}

class PixelBlocksTest : public hwy::TestWithParamTarget {
 protected:
  // Memory that ends where the last pixel ends: nothing may be written behind it.
  void compare(const Lists &lists) {
    GuardedBytes memory(lists.pixels.size() * sizeof(BlobPixel));
    std::memset(memory.data(), 0xAB, memory.size());
    std::vector<std::int32_t> next = lists.next;
    pentracker::write_pixel_blocks(
        lists.blocks.data(), static_cast<std::int32_t>(lists.blocks.size()), lists.pixels.size(),
        next.data(), reinterpret_cast<BlobPixel *>(memory.data()));
    EXPECT_EQ(std::memcmp(memory.data(), lists.pixels.data(), memory.size()), 0);
  }
};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(PixelBlocksTest);

TEST_P(PixelBlocksTest, WritesBlocksOfEveryWidthInTheOrderOfTheirGroups) {
  Random random(9);
  for (std::int32_t widest = 1; widest < 120; ++widest) {
    SCOPED_TRACE("blocks up to " + std::to_string(widest) + " wide");
    compare(make_lists(20, widest, 1 + widest % 7, &random));
  }
}

TEST_P(PixelBlocksTest, WritesNarrowBlocksOfEveryHeight) {
  Random random(11);
  for (std::int32_t highest = 1; highest < 60; ++highest) {
    SCOPED_TRACE("blocks up to " + std::to_string(highest) + " high");
    for (const std::int32_t widest : {1, 3, 9}) {
      compare(make_lists(20, widest, highest, &random));
    }
  }
}

TEST_P(PixelBlocksTest, WritesVeryManyPixelsPastTheCache) {
  Random random(10);
  compare(make_lists(60, 500, 10, &random));
  compare(make_lists(1, 448, 1, &random));
  Lists white;
  white.blocks.push_back({0, 448, 0, 251, 0});
  white.next.push_back(0);
  for (std::int32_t i = 0; i < 448 * 252; ++i) white.pixels.push_back({i % 448, i / 448});
  compare(white);
}

}  // namespace
}  // namespace nox::test
