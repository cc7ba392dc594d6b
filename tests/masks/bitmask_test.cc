#include "masks/bitmask.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "masks/mask_maker.h"
#include "support/random.h"
#include "video/aligned_alloc.h"

namespace nox::test {
namespace {

using Rows = std::vector<std::string>;

TEST(BitMaskTest, OneByOneHasOneUnitAndPadding) {
  const MaskPtr mask = make_mask(1, 1);
  EXPECT_EQ(mask->stride, 35);
  EXPECT_EQ(mask->size, 35);
  EXPECT_EQ(mask->data, mask->block + 4);
  EXPECT_EQ(mask->data[0], 0);
}

TEST(BitMaskTest, StrideIsSixteenBytesPer128PixelsAndNineteen) {
  EXPECT_EQ(make_mask(0, 1)->stride, 19);
  EXPECT_EQ(make_mask(128, 1)->stride, 35);
  EXPECT_EQ(make_mask(129, 2)->stride, 51);
  EXPECT_EQ(make_mask(129, 2)->size, 102);
  EXPECT_EQ(make_mask(448, 1)->stride, 83);
  EXPECT_EQ(make_mask(640, 1)->stride, 99);
}

TEST(BitMaskTest, NewMaskIsAlignedAndClear) {
  const MaskPtr mask = make_mask(300, 7);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(mask.get()) % kNoxAlignment, 0U);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(mask->block) % kNoxAlignment, 0U);
  EXPECT_EQ(block_bytes(*mask), std::vector<std::uint8_t>(static_cast<std::size_t>(mask->size)));
}

TEST(BitMaskTest, SizesBelowOneHoldNoPixels) {
  const std::uint8_t sample = 255;
  for (const auto &[width, height] : {std::pair{0, 0}, {0, 3}, {3, 0}, {-1, 5}, {5, -1}}) {
    const MaskPtr mask = make_mask(width, height);
    EXPECT_EQ(mask->size > 0, height > 0) << width << "x" << height;
    bitmask_threshold(mask.get(), &sample, 0, 0);
    bitmask_or(mask.get(), mask.get(), mask.get());
    for (int i = 0; i < mask->size; ++i) EXPECT_EQ(mask->block[i], 0) << width << "x" << height;
  }
}

TEST(BitMaskTest, ThereIsNoMaskBeyondTheLimitOfItsSize) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  // 35 bytes a row: the first height whose block has more than 2^31 - 1.
  EXPECT_EQ(bitmask_new(1, 61356676), nullptr);
  EXPECT_EQ(bitmask_new(kMost, 8), nullptr);
  EXPECT_EQ(bitmask_new(kMost, kMost), nullptr);
  // The longest row.
  const MaskPtr longest = make_mask(kMost, 1);
  ASSERT_NE(longest, nullptr);
  EXPECT_EQ(longest->stride, (1 << 28) + 19);
  EXPECT_EQ(longest->size, longest->stride);
}

TEST(BitMaskTest, FreeOfNullDoesNothing) {
  EXPECT_NO_FATAL_FAILURE(bitmask_free(nullptr));
}

TEST(BitMaskTest, CopyTakesThePaddingAlong) {
  Random random(1);
  const MaskPtr src = make_mask(77, 5);
  const MaskPtr dst = make_mask(77, 5);
  fill_mask(src.get(), Fill::kRandom, &random);
  bitmask_copy(dst.get(), src.get());
  EXPECT_EQ(block_bytes(*dst), block_bytes(*src));
}

TEST(BitMaskTest, GetReadsLeastSignificantBitFirst) {
  const MaskPtr mask = make_mask(20, 2);
  mask->data[mask->stride + 1] = 0x05;
  EXPECT_EQ(mask_rows(*mask), (Rows{std::string(20, '.'), "........#.#........."}));
}

TEST(BitMaskTest, EqualToTheThresholdIsNeverSet) {
  const std::vector<std::uint8_t> plane = {169, 170, 171, 0, 255};
  const MaskPtr mask = make_mask(5, 1);
  bitmask_threshold(mask.get(), plane.data(), 5, 170);
  EXPECT_EQ(mask_rows(*mask), Rows{"..#.#"});
  bitmask_threshold_below(mask.get(), plane.data(), 5, 170);
  EXPECT_EQ(mask_rows(*mask), Rows{"#..#."});
}

TEST(BitMaskTest, ThresholdOf255SetsNothing) {
  const std::vector<std::uint8_t> plane = {254, 255, 0};
  const MaskPtr mask = make_mask(3, 1);
  bitmask_threshold(mask.get(), plane.data(), 3, 255);
  EXPECT_EQ(mask_rows(*mask), Rows{"..."});
}

TEST(BitMaskTest, ThresholdOf0SetsEverySampleAbove0) {
  const std::vector<std::uint8_t> plane = {0, 1, 128, 255};
  const MaskPtr mask = make_mask(4, 1);
  bitmask_threshold(mask.get(), plane.data(), 4, 0);
  EXPECT_EQ(mask_rows(*mask), Rows{".###"});
  bitmask_threshold_below(mask.get(), plane.data(), 4, 0);
  EXPECT_EQ(mask_rows(*mask), Rows{"...."});
}

TEST(BitMaskTest, OnlyTheLowByteOfTheThresholdCounts) {
  const std::vector<std::uint8_t> plane = {9, 10, 11};
  const MaskPtr mask = make_mask(3, 1);
  bitmask_threshold(mask.get(), plane.data(), 3, 256 + 10);
  EXPECT_EQ(mask_rows(*mask), Rows{"..#"});
}

TEST(BitMaskTest, ThresholdClearsTheWholeBlock) {
  const std::vector<std::uint8_t> plane(64 * 3);
  for (auto *threshold : {bitmask_threshold, bitmask_threshold_below}) {
    const MaskPtr mask = make_mask(50, 3);
    std::memset(mask->block, 0xFF, static_cast<std::size_t>(mask->size));
    threshold(mask.get(), plane.data(), 64, 0);
    EXPECT_EQ(block_bytes(*mask), std::vector<std::uint8_t>(static_cast<std::size_t>(mask->size)));
  }
}

TEST(BitMaskTest, BitsBehindTheWidthComeFromTheStridePadding) {
  auto *plane = static_cast<std::uint8_t *>(nox_aligned_alloc(kNoxAlignment, 32));
  std::memset(plane, 255, 32);
  const MaskPtr mask = make_mask(3, 2);
  bitmask_threshold(mask.get(), plane, 16, 170);
  nox_aligned_free(plane);
  for (int y = 0; y < 2; ++y) {
    const std::uint8_t *row = mask->data + y * mask->stride;
    EXPECT_EQ(row[0], 0xFF) << y;
    EXPECT_EQ(row[1], 0xFF) << y;
    EXPECT_EQ(row[2], 0) << y;
  }
}

TEST(BitMaskTest, LastRowOfAPackedPlaneReadsNothingBehindIt) {
  const std::vector<std::uint8_t> plane(2 * 3, 255);
  const MaskPtr mask = make_mask(3, 2);
  bitmask_threshold(mask.get(), plane.data(), 3, 170);
  EXPECT_EQ(mask->data[0], 0x3F);  // the second row follows at once
  EXPECT_EQ(mask->data[mask->stride], 0x07);
}

TEST(BitMaskTest, RowsMayRunUpwards) {
  const std::vector<std::uint8_t> plane = {255, 0, 0, 0, 255, 0};
  const MaskPtr mask = make_mask(3, 2);
  bitmask_threshold(mask.get(), plane.data() + 3, -3, 170);
  EXPECT_EQ(mask_rows(*mask), (Rows{".#.", "#.."}));
}

TEST(BitMaskTest, OrAccumulatesInPlace) {
  const MaskPtr a = make_mask(9, 1);
  const MaskPtr b = make_mask(9, 1);
  a->data[0] = 0x11;
  b->data[0] = 0x18;
  b->data[1] = 0x01;
  bitmask_or(a.get(), a.get(), b.get());
  EXPECT_EQ(mask_rows(*a), Rows{"#..##...#"});
}

TEST(BitMaskTest, AndNotTakesTheSecondAway) {
  const MaskPtr a = make_mask(4, 1);
  const MaskPtr b = make_mask(4, 1);
  const MaskPtr dst = make_mask(4, 1);
  a->data[0] = 0x0C;
  b->data[0] = 0x0A;
  bitmask_and_not(dst.get(), a.get(), b.get());
  EXPECT_EQ(mask_rows(*dst), Rows{"..#."});
  bitmask_and(dst.get(), a.get(), b.get());
  EXPECT_EQ(mask_rows(*dst), Rows{"...#"});
}

}  // namespace
}  // namespace nox::test
