// The mask operations against their plain forms, bit for bit, for every instruction set at hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#define HWY_WANT_AVX3_DL  // as the kernels do
#include "hwy/tests/hwy_gtest.h"
#include "masks/bitmask.h"
#include "masks/bitmask_plain.h"
#include "masks/mask_maker.h"
#include "support/guarded_plane.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

std::vector<std::int32_t> test_widths() {
  std::vector<std::int32_t> widths;
  for (std::int32_t w = 1; w <= 300; w += quick() ? 13 : 1) widths.push_back(w);
  for (const std::int32_t w : {448, 640, 1120, 1920, 3840}) widths.push_back(w);
  return widths;
}

using ThresholdFunction = void(BitMask *, const std::uint8_t *, std::int32_t, std::uint32_t);
using PlainThreshold = void(BitMask *, const std::uint8_t *, std::int32_t, std::uint32_t,
                            std::ptrdiff_t);

struct ThresholdPair {
  const char *name;
  ThresholdFunction *function;
  PlainThreshold *plain;
};
constexpr ThresholdPair kThresholds[] = {
    {"threshold", bitmask_threshold, threshold_plain},
    {"threshold_below", bitmask_threshold_below, threshold_below_plain},
};

// Samples on both sides of each threshold, and the threshold itself.
void fill_near(GuardedPlane *plane, std::uint32_t threshold, Random *random) {
  random->fill(plane->data(), plane->size());
  for (std::size_t i = 0; i < plane->size(); ++i) {
    if (!random->chance(0.5)) continue;
    const std::int32_t near = static_cast<std::int32_t>(threshold) + random->between(-1, 1);
    plane->data()[i] = static_cast<std::uint8_t>(std::clamp(near, 0, 255));
  }
}

class BitmaskKernelsTest : public hwy::TestWithParamTarget {
 protected:
  Random random_{20};

  void compare_threshold(const ThresholdPair &pair, const std::uint8_t *plane, std::int32_t width,
                         std::int32_t height, std::int32_t stride, std::uint32_t threshold,
                         std::ptrdiff_t readable) {
    SCOPED_TRACE(std::string(pair.name) + " " + std::to_string(width) + "x" +
                 std::to_string(height) + " stride " + std::to_string(stride) + " threshold " +
                 std::to_string(threshold));
    GuardedMask mask(width, height);
    GuardedMask expected(width, height);
    random_.fill(mask->block, static_cast<std::size_t>(mask->size));
    pair.function(mask.get(), plane, stride, threshold);
    pair.plain(expected.get(), plane, stride, threshold, readable);
    ASSERT_EQ(block_bytes(*mask.get()), block_bytes(*expected.get()));
  }
};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(BitmaskKernelsTest);

TEST_P(BitmaskKernelsTest, ThresholdOfPlanesThatEndAtAnUnreadablePage) {
  constexpr std::uint32_t kThresholdValues[] = {0, 1, 127, 128, 170, 254, 255};
  std::size_t turn = 0;
  for (const std::int32_t width : test_widths()) {
    const std::int32_t height = random_.between(1, 5);
    const std::int32_t stride = width + random_.between(0, 40);
    GuardedPlane plane(stride, height, stride);
    const std::uint32_t threshold = kThresholdValues[turn++ % std::size(kThresholdValues)];
    fill_near(&plane, threshold, &random_);
    for (const ThresholdPair &pair : kThresholds) {
      compare_threshold(pair, plane.data(), width, height, stride, threshold,
                        static_cast<std::ptrdiff_t>(plane.size()));
    }
  }
}

TEST_P(BitmaskKernelsTest, ThresholdOfAlignedPlanesReadsTheStridePaddingOfEveryRow) {
  for (const std::int32_t width : test_widths()) {
    const std::int32_t stride = (width + 15) / 16 * 16;
    const std::int32_t height = random_.between(1, 4);
    GuardedPlane plane(stride, height, stride);
    fill_near(&plane, 170, &random_);
    for (const ThresholdPair &pair : kThresholds) {
      compare_threshold(pair, plane.data(), width, height, stride, 170,
                        static_cast<std::ptrdiff_t>(plane.size()));
    }
  }
}

TEST_P(BitmaskKernelsTest, ThresholdOfRowsThatOverlap) {
  for (std::int32_t width = 1; width <= 40; ++width) {
    for (const std::int32_t stride : {0, 1, 3, 16}) {
      GuardedPlane plane(std::max(width, stride), 30, stride);
      fill_near(&plane, 100, &random_);
      compare_threshold(kThresholds[0], plane.data(), width, 30, stride, 100,
                        static_cast<std::ptrdiff_t>(plane.size()));
    }
  }
}

TEST_P(BitmaskKernelsTest, ThresholdOfEverySampleValue) {
  GuardedPlane plane(256, 1, 256);
  for (int i = 0; i < 256; ++i) plane.data()[i] = static_cast<std::uint8_t>(i);
  for (std::uint32_t threshold = 0; threshold < 600; threshold += quick() ? 37 : 1) {
    for (const ThresholdPair &pair : kThresholds) {
      compare_threshold(pair, plane.data(), 256, 1, 256, threshold, 256);
    }
  }
}

TEST_P(BitmaskKernelsTest, ThresholdOfEveryAlignment) {
  for (std::int32_t shift = 0; shift < 64; ++shift) {
    const std::int32_t width = 200 - shift;
    GuardedPlane plane(311 + shift, 3, 311);
    fill_near(&plane, 60, &random_);
    const std::ptrdiff_t readable = 3 * 311;
    compare_threshold(kThresholds[0], plane.data(), width, 3, 311, 60, readable);
    compare_threshold(kThresholds[0], plane.data() + shift, width, 3, 311, 60, readable);
  }
}

using CombineFunction = void(BitMask *, const BitMask *, const BitMask *);

struct CombinePair {
  const char *name;
  CombineFunction *function;
  CombineFunction *plain;
};
constexpr CombinePair kCombines[] = {
    {"or", bitmask_or, or_plain},
    {"and", bitmask_and, and_plain},
    {"and_not", bitmask_and_not, and_not_plain},
};

TEST_P(BitmaskKernelsTest, CombineTouchesWholeWordsAndNothingElse) {
  for (const CombinePair &pair : kCombines) {
    for (const std::int32_t width : test_widths()) {
      SCOPED_TRACE(std::string(pair.name) + " width " + std::to_string(width));
      const std::int32_t height = random_.between(1, 4);
      GuardedMask a(width, height);
      GuardedMask b(width, height);
      GuardedMask dst(width, height);
      GuardedMask expected(width, height);
      fill_mask(a.get(), Fill::kRandom, &random_);
      fill_mask(b.get(), Fill::kRandom, &random_);
      fill_mask(dst.get(), Fill::kRandom, &random_);
      bitmask_copy(expected.get(), dst.get());
      pair.function(dst.get(), a.get(), b.get());
      pair.plain(expected.get(), a.get(), b.get());
      ASSERT_EQ(block_bytes(*dst.get()), block_bytes(*expected.get()));
    }
  }
}

TEST_P(BitmaskKernelsTest, CombineInPlaceOfEitherSource) {
  for (const CombinePair &pair : kCombines) {
    for (const std::int32_t width : test_widths()) {
      SCOPED_TRACE(std::string(pair.name) + " width " + std::to_string(width));
      const MaskPtr a = make_mask(width, 3);
      const MaskPtr b = make_mask(width, 3);
      const MaskPtr first = make_mask(width, 3);
      const MaskPtr second = make_mask(width, 3);
      const MaskPtr expected = make_mask(width, 3);
      fill_mask(a.get(), Fill::kRandom, &random_);
      fill_mask(b.get(), Fill::kRandom, &random_);
      bitmask_copy(first.get(), a.get());
      bitmask_copy(second.get(), b.get());
      bitmask_copy(expected.get(), a.get());
      pair.plain(expected.get(), a.get(), b.get());
      pair.function(first.get(), first.get(), b.get());
      ASSERT_EQ(block_bytes(*first), block_bytes(*expected));
      bitmask_copy(expected.get(), b.get());
      pair.plain(expected.get(), a.get(), b.get());
      pair.function(second.get(), a.get(), second.get());
      ASSERT_EQ(block_bytes(*second), block_bytes(*expected));
    }
  }
}

}  // namespace
}  // namespace nox::test
