#include "nox-visuals/readers/same_code.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace nox::test {
namespace {

using app::add_new_codes;
using app::Code;
using app::same_code;

Code square(const std::string &bytes, double left, double top, double side,
            const std::string &reader = "quirc") {
  Code code;
  code.bytes = bytes;
  code.corners = {{{left, top}, {left + side, top}, {left + side, top + side}, {left, top + side}}};
  code.reader = reader;
  return code;
}

TEST(SameCode, TakesCornersThatDifferALittle) {
  EXPECT_TRUE(same_code(square("a", 10, 10, 50), square("a", 12, 9, 48)));
}

TEST(SameCode, TellsOtherBytesApart) {
  EXPECT_FALSE(same_code(square("a", 10, 10, 50), square("b", 10, 10, 50)));
  EXPECT_FALSE(same_code(square("a", 10, 10, 50), square(std::string("a\0", 2), 10, 10, 50)));
}

TEST(SameCode, TellsCardsSideBySideApart) {
  EXPECT_FALSE(same_code(square("a", 0, 0, 50), square("a", 51, 0, 50)));
  EXPECT_FALSE(same_code(square("a", 0, 0, 50), square("a", 0, 51, 50)));
}

TEST(SameCode, TakesCornersInEitherDirection) {
  Code mirrored = square("a", 10, 10, 50);
  std::reverse(mirrored.corners.begin(), mirrored.corners.end());
  EXPECT_TRUE(same_code(mirrored, square("a", 11, 11, 50)));
  EXPECT_TRUE(same_code(square("a", 11, 11, 50), mirrored));
  EXPECT_FALSE(same_code(mirrored, square("a", 90, 10, 50)));
}

TEST(SameCode, AddsOnlyWhatIsNew) {
  std::vector<Code> codes = {square("left", 0, 0, 50)};
  add_new_codes({square("right", 60, 0, 50, "zxing"), square("left", 1, 1, 50, "zxing")}, &codes);
  add_new_codes({square("right", 61, 1, 50, "quirc2x")}, &codes);
  ASSERT_EQ(codes.size(), 2U);
  EXPECT_EQ(codes[0].reader, "quirc");
  EXPECT_EQ(codes[1].bytes, "right");
  EXPECT_EQ(codes[1].reader, "zxing");
}

// One reader may find a code twice, upright and inverted.
TEST(SameCode, AddsACodeOfOneListOnce) {
  std::vector<Code> codes;
  add_new_codes({square("a", 0, 0, 50), square("a", 1, 0, 50)}, &codes);
  EXPECT_EQ(codes.size(), 1U);
}

}  // namespace
}  // namespace nox::test
