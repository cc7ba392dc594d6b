#include "masks/morphology.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "masks/known_shapes.h"
#include "masks/mask_maker.h"
#include "masks/morphology_shapes.h"
#include "masks/shapes.h"
#include "support/random.h"

namespace nox::test {
namespace {

using Rows = std::vector<std::string>;

void set(BitMask *mask, std::int32_t x, std::int32_t y) {
  std::uint8_t *byte = mask->data + y * mask->stride + x / 8;
  *byte = static_cast<std::uint8_t>(*byte | 1 << (x % 8));
}

MaskPtr mask_of(const Rows &rows) {
  MaskPtr mask =
      make_mask(static_cast<std::int32_t>(rows[0].size()), static_cast<std::int32_t>(rows.size()));
  for (std::int32_t y = 0; y < mask->height; ++y) {
    for (std::int32_t x = 0; x < mask->width; ++x) {
      if (rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#') {
        set(mask.get(), x, y);
      }
    }
  }
  return mask;
}

Rows morphed(const BitMask &src, const Shape &shape, int operation) {
  const MaskPtr dst = make_mask(src.width, src.height);
  bitmask_morph(dst.get(), &src, make_element(shape).get(), operation);
  return mask_rows(*dst);
}

std::int32_t member_count(const Shape &shape) {
  std::int32_t count = 0;
  for (const std::uint8_t member : shape.members) count += member != 0 ? 1 : 0;
  return count;
}

TEST(StructuringElementTest, LaneWidthFollowsTheColumns) {
  for (std::int32_t width = 1; width <= 24; ++width) {
    const ElementPtr element = make_element(box(width, 3));
    EXPECT_EQ(element->lane_bits, width <= 8 ? 8 : width <= 16 ? 16 : 32) << width;
    EXPECT_EQ(element->lane_bytes * 8, element->lane_bits) << width;
    EXPECT_EQ(element->anchor_x, width / 2);
    EXPECT_EQ(element->anchor_y, 1);
  }
  EXPECT_EQ(make_element(box(25, 1))->lane_bits, 64);
  EXPECT_EQ(make_element(box(300, 1))->lane_bits, 1 << 30);
}

TEST(StructuringElementTest, RowsRepeatThePatternInEveryLane) {
  const ElementPtr cross = make_element(cross3());
  EXPECT_EQ(std::vector<std::uint8_t>(cross->rows, cross->rows + 16),
            std::vector<std::uint8_t>(16, 2));
  const ElementPtr disc = make_element(disc15());
  EXPECT_EQ(disc->rows[0], 0xE0);  // columns 5 to 9
  EXPECT_EQ(disc->rows[1], 0x03);
  EXPECT_EQ(disc->rows[14], 0xE0);
  EXPECT_EQ(disc->rows[15], 0x03);
  const ElementPtr wide = make_element(box(20, 1));
  EXPECT_EQ(std::vector<std::uint8_t>(wide->rows + 12, wide->rows + 16),
            (std::vector<std::uint8_t>{0xFF, 0xFF, 0x0F, 0}));
}

TEST(StructuringElementTest, FreeOfNullDoesNothing) {
  EXPECT_NO_FATAL_FAILURE(structuring_element_free(nullptr));
}

TEST(StructuringElementTest, DiscHas177Members) {
  EXPECT_EQ(member_count(disc15()), 177);
}

TEST(KnownShapesTest, AreTheModulesShapesWithTheirKernels) {
  namespace masks = nox::masks;
  const struct {
    Shape shape;
    masks::ShapeKernel *erode;
    masks::ShapeKernel *dilate;
  } known[] = {{box(3, 3), masks::erode_box3, masks::dilate_box3},
               {cross3(), masks::erode_cross3, masks::dilate_cross3},
               {disc15(), masks::erode_disc15, masks::dilate_disc15}};
  for (const auto &[shape, erode, dilate] : known) {
    const masks::KnownShape *found = masks::find_known_shape(*make_element(shape));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->erode, erode);
    EXPECT_EQ(found->dilate, dilate);
  }
}

TEST(KnownShapesTest, OneMemberMoreOrLessIsAnotherShape) {
  for (const Shape &shape : {box(3, 3), cross3(), disc15()}) {
    for (std::size_t i = 0; i < shape.members.size(); ++i) {
      Shape other = shape;
      other.members[i] ^= 1;
      const nox::masks::KnownShape *found = nox::masks::find_known_shape(*make_element(other));
      EXPECT_EQ(found, nullptr) << "member " << i << " of " << shape.width << " columns";
    }
  }
  for (const Shape &other : {box(3, 2), box(2, 3), box(15, 15), box(4, 3), box(3, 4)}) {
    EXPECT_EQ(nox::masks::find_known_shape(*make_element(other)), nullptr);
  }
}

TEST(KnownShapesTest, AnotherAnchorIsAnotherShape) {
  for (std::int32_t StructuringElement::*anchor :
       {&StructuringElement::anchor_x, &StructuringElement::anchor_y}) {
    const ElementPtr element = make_element(cross3());
    --((*element).*anchor);
    EXPECT_EQ(nox::masks::find_known_shape(*element), nullptr);
  }
}

TEST(MorphologyTest, ErodingAFullMaskClearsOnlyTheBorder) {
  const MaskPtr mask = mask_of(Rows(10, std::string(10, '#')));
  Rows expected(10, std::string(10, '.'));
  for (std::size_t y = 1; y <= 8; ++y) expected[y] = ".########.";
  EXPECT_EQ(morphed(*mask, box(3, 3), kBitmaskErode), expected);
}

TEST(MorphologyTest, ErodingReadsTheStoredBitsBehindTheWidth) {
  const MaskPtr mask = mask_of(Rows(3, std::string(10, '#')));
  for (int y = 0; y < 3; ++y) mask->data[y * mask->stride + 1] = 0xFF;
  EXPECT_EQ(morphed(*mask, box(3, 3), kBitmaskErode),
            (Rows{"..........", ".#########", ".........."}));
}

TEST(MorphologyTest, DilatingOnePixelDrawsTheDiamond) {
  const MaskPtr mask = mask_of({".......", ".......", ".......", "...#...", ".......", "......."});
  EXPECT_EQ(member_count(diamond5()), 13);
  EXPECT_EQ(morphed(*mask, diamond5(), kBitmaskDilate),
            (Rows{".......", "...#...", "..###..", ".#####.", "..###..", "...#..."}));
}

TEST(MorphologyTest, DilatingInACornerIsClipped) {
  const MaskPtr mask = mask_of({"#....", ".....", "....."});
  EXPECT_EQ(morphed(*mask, diamond5(), kBitmaskDilate), (Rows{"###..", "##...", "#...."}));
}

TEST(MorphologyTest, DilationMirrorsTheShape) {
  const Shape shape{3, 1, {1, 0, 0}};
  const MaskPtr mask = mask_of({"..#.."});
  EXPECT_EQ(morphed(*mask, shape, kBitmaskDilate), Rows{"...#."});
  EXPECT_EQ(morphed(*mask, shape, kBitmaskErode), Rows{"...#."});
}

TEST(MorphologyTest, OneByOneCopiesEitherWay) {
  Random random(3);
  const MaskPtr mask = make_mask(130, 4);
  fill_mask(mask.get(), Fill::kRandom, &random);
  EXPECT_EQ(morphed(*mask, box(1, 1), kBitmaskDilate), mask_rows(*mask));
  EXPECT_EQ(morphed(*mask, box(1, 1), kBitmaskErode), mask_rows(*mask));
}

TEST(MorphologyTest, Width113TakesItsLastPixelFromASecondStrip) {
  const MaskPtr mask = make_mask(113, 1);
  set(mask.get(), 112, 0);
  const Rows rows = morphed(*mask, box(3, 1), kBitmaskDilate);
  EXPECT_EQ(rows[0], std::string(111, '.').append(2, '#'));
}

TEST(MorphologyTest, EightColumnsAreSuppressedByTheLastColumn) {
  const MaskPtr mask = mask_of({"........#..............."});
  EXPECT_EQ(morphed(*mask, box(8, 1), kBitmaskDilate), Rows{"......#######..........."});
  EXPECT_EQ(morphed(*mask, box(9, 1), kBitmaskDilate), Rows{"....#########..........."});
}

TEST(MorphologyTest, SixteenColumnsAreSuppressedByTheLastColumn) {
  const MaskPtr mask = mask_of({"................########"});
  // The window of 9 to 16 meets the run with its last column; further right only others do.
  EXPECT_EQ(morphed(*mask, box(16, 1), kBitmaskDilate), Rows{".................#######"});
}

TEST(MorphologyTest, ElementWithoutMembersDilatesToNothingAndErodesToAll) {
  const Shape none{3, 3, std::vector<std::uint8_t>(9)};
  const MaskPtr mask = mask_of({"#.#", ".#."});
  EXPECT_EQ(morphed(*mask, none, kBitmaskDilate), (Rows{"...", "..."}));
  EXPECT_EQ(morphed(*mask, none, kBitmaskErode), (Rows{"###", "###"}));
}

TEST(MorphologyTest, ElementTallerThanTheMask) {
  const MaskPtr mask = mask_of({"#", "."});
  EXPECT_EQ(morphed(*mask, box(1, 9), kBitmaskDilate), (Rows{"#", "#"}));
  EXPECT_EQ(morphed(*mask, box(1, 9), kBitmaskErode), (Rows{".", "."}));
}

TEST(MorphologyTest, UnknownOperationsAndWideElementsLeaveTheDestination) {
  Random random(4);
  const MaskPtr src = make_mask(200, 3);
  const MaskPtr dst = make_mask(200, 3);
  fill_mask(src.get(), Fill::kRandom, &random);
  fill_mask(dst.get(), Fill::kRandom, &random);
  const std::vector<std::uint8_t> before = block_bytes(*dst);
  const ElementPtr small = make_element(box(3, 3));
  for (const int operation : {-1, 2, 256})
    bitmask_morph(dst.get(), src.get(), small.get(), operation);
  for (const std::int32_t width : {0, 25, 33, 64, 300}) {
    const ElementPtr wide = make_element(box(width, 2));
    bitmask_erode(dst.get(), src.get(), wide.get());
    bitmask_dilate(dst.get(), src.get(), wide.get());
  }
  EXPECT_EQ(block_bytes(*dst), before);
}

TEST(MorphologyTest, ErodeAndDilateAreMorphWithTheirCodes) {
  Random random(5);
  const MaskPtr src = make_mask(100, 20);
  const MaskPtr dst = make_mask(100, 20);
  fill_mask(src.get(), Fill::kDense, &random);
  const ElementPtr element = make_element(disc15());
  bitmask_erode(dst.get(), src.get(), element.get());
  EXPECT_EQ(mask_rows(*dst), morphed(*src, disc15(), kBitmaskErode));
  bitmask_dilate(dst.get(), src.get(), element.get());
  EXPECT_EQ(mask_rows(*dst), morphed(*src, disc15(), kBitmaskDilate));
}

}  // namespace
}  // namespace nox::test
