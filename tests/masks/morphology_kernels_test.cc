// Erosion and dilation against their plain forms, bit for bit, for every instruction set at hand.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "hwy/tests/hwy_gtest.h"
#include "masks/mask_maker.h"
#include "masks/morphology.h"
#include "masks/morphology_plain.h"
#include "masks/shapes.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

constexpr std::int32_t kLargestElement = 24;

class MorphologyKernelsTest : public hwy::TestWithParamTarget {
 protected:
  Random random_{30};

  Fill random_fill() { return kFills[static_cast<std::size_t>(random_.between(0, 4))]; }

  // Both operations on a mask with garbage behind its width; the whole block is compared, so that a
  // stray write shows.
  void compare(std::int32_t width, std::int32_t height, const Shape &shape) {
    GuardedMask src(width, height);
    GuardedMask dst(width, height);
    GuardedMask expected(width, height);
    const Fill fill = random_fill();
    fill_mask(src.get(), fill, &random_);
    if (random_.chance(0.25)) clear_behind_width(src.get());
    const ElementPtr element = make_element(shape);
    for (const int operation : {kBitmaskErode, kBitmaskDilate}) {
      SCOPED_TRACE("mask " + std::to_string(width) + "x" + std::to_string(height) + " element " +
                   std::to_string(shape.width) + "x" + std::to_string(shape.height) + " fill " +
                   std::to_string(static_cast<int>(fill)) + " operation " +
                   std::to_string(operation));
      fill_mask(dst.get(), Fill::kRandom, &random_);
      bitmask_copy(expected.get(), dst.get());
      bitmask_morph(dst.get(), src.get(), element.get(), operation);
      morph_plain(expected.get(), src.get(), shape, operation == kBitmaskDilate);
      ASSERT_EQ(block_bytes(*dst.get()), block_bytes(*expected.get()));
    }
  }

  Shape random_shape_of(std::int32_t width, std::int32_t height) {
    constexpr double kDensities[] = {0.02, 0.3, 0.5, 0.9, 1.0};
    return random_shape(width, height, kDensities[random_.between(0, 4)], &random_);
  }
};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(MorphologyKernelsTest);

TEST_P(MorphologyKernelsTest, EveryElementSizeAndEveryWidthTo300) {
  const std::int32_t sizes = kLargestElement * kLargestElement;
  for (std::int32_t i = 0; i < 600; i += quick() ? 17 : 1) {
    const std::int32_t size = i % sizes;
    const Shape shape = random_shape_of(1 + size % kLargestElement, 1 + size / kLargestElement);
    compare(1 + i % 300, random_.between(1, 12), shape);
    if (HasFatalFailure()) return;
  }
}

TEST_P(MorphologyKernelsTest, ModuleShapesAtEveryWidthTo300) {
  const Shape shapes[] = {box(3, 3), cross3(), diamond5(), box(7, 7), disc15()};
  for (std::int32_t width = 1; width <= 300; width += quick() ? 23 : 1) {
    for (const Shape &shape : shapes) {
      compare(width, random_.between(1, shape.height > 7 ? 20 : 8), shape);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(MorphologyKernelsTest, WideMasks) {
  for (const std::int32_t width : {448, 512, 513, 640, 1120, 1920, 3840}) {
    for (const Shape &shape : {box(3, 3), cross3(), disc15(), random_shape_of(24, 6)}) {
      compare(width, quick() ? 2 : random_.between(3, 17), shape);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(MorphologyKernelsTest, MasksOfSeveralBandsOfRows) {
  // Large masks are swept band by band, so rows at a band's edges come from its neighbour's rows.
  compare(3840, quick() ? 50 : 150, cross3());
  compare(300, quick() ? 190 : 400, box(3, 3));
  compare(130, quick() ? 250 : 600, disc15());
}

TEST_P(MorphologyKernelsTest, ElementsOf8And16Columns) {
  for (std::int32_t i = 0; i < 60; i += quick() ? 7 : 1) {
    const std::int32_t columns = i % 2 == 0 ? 8 : 16;
    compare(random_.between(1, 300), random_.between(1, 9),
            random_shape_of(columns, random_.between(1, 9)));
    if (HasFatalFailure()) return;
  }
}

TEST_P(MorphologyKernelsTest, NearTwinsOfTheModuleShapes) {
  // One member more or less than a shape that has a kernel of its own.
  for (const Shape &original : {box(3, 3), cross3(), disc15()}) {
    for (std::size_t i = 0; i < original.members.size(); i += quick() ? 5 : 1) {
      Shape twin = original;
      twin.members[i] = twin.members[i] == 0 ? 1 : 0;
      compare(random_.between(100, 140), original.height + 2, twin);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(MorphologyKernelsTest, ElementsTallerThan24Rows) {
  for (const std::int32_t height : {25, 64, 65, 150}) {
    compare(random_.between(1, 140), random_.between(1, 40), random_shape_of(5, height));
    if (HasFatalFailure()) return;
  }
}

TEST_P(MorphologyKernelsTest, EmptyRowsInsideAndAround) {
  Shape shape = random_shape(9, 12, 0.5, &random_);
  for (const std::size_t row : {0U, 1U, 5U, 6U, 11U}) {
    for (std::size_t c = 0; c < 9; ++c) shape.members[row * 9 + c] = 0;
  }
  for (const std::int32_t height : {1, 2, 5, 30}) compare(150, height, shape);
}

TEST(MorphologyPlainTest, PixelsAndStripsAgree) {
  Random random(31);
  for (std::int32_t i = 0; i < (quick() ? 10 : 100); ++i) {
    const std::int32_t width = random.between(1, 300);
    const Shape shape = random_shape(random.between(1, 24), random.between(1, 9), 0.4, &random);
    const MaskPtr src = make_mask(width, 4);
    const MaskPtr pixels = make_mask(width, 4);
    const MaskPtr strips = make_mask(width, 4);
    fill_mask(src.get(), i % 2 == 0 ? Fill::kRandom : Fill::kSparse, &random);
    for (const bool dilate : {false, true}) {
      SCOPED_TRACE(std::to_string(width) + " by element of " + std::to_string(shape.width));
      morph_plain(pixels.get(), src.get(), shape, dilate);
      morph_strips_plain(strips.get(), src.get(), shape, dilate);
      ASSERT_EQ(block_bytes(*pixels), block_bytes(*strips));
    }
  }
}

}  // namespace
}  // namespace nox::test
