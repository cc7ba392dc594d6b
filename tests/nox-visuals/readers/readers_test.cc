// The readers on generated pictures: what each of them reads, and what becomes of all together.
#include "nox-visuals/readers/readers.h"

#include <gtest/gtest.h>
#include <qrencode.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "scenes/canvas.h"
#include "scenes/qr_code.h"
#include "support/guarded_plane.h"
#include "support/quick.h"
#include "video/nox_video_frame.h"

namespace nox::test {
namespace {

using app::Code;
using app::make_readers;

constexpr float kUpright = 0;

// One code in the middle of a gray desk, whose last sample is the last readable byte.
class CodePicture {
 public:
  CodePicture(int width, int height, const std::string &text, float module, float angle = kUpright)
      : plane_(width, height, width + 5) {
    scenes::Canvas canvas(width, height);
    canvas.fill({128, 128, 128});
    scenes::draw_qr_code(&canvas, scenes::QrCode(text),
                         {static_cast<float>(width) / 2, static_cast<float>(height) / 2}, module,
                         angle);
    NoxVideoFrame frame;
    nox_video_frame_alloc(&frame, kNoxFormatI420, width, height);
    canvas.write(&frame);
    for (int y = 0; y < height; ++y) {
      std::copy_n(frame.planes[0] + static_cast<std::ptrdiff_t>(y) * frame.strides[0], width,
                  plane_.row(y));
    }
    nox_video_frame_free_planes(&frame);
  }

  void invert() {
    for_each_row([](std::uint8_t *begin, std::uint8_t *end) {
      std::transform(begin, end, begin,
                     [](std::uint8_t sample) { return static_cast<std::uint8_t>(255 - sample); });
    });
  }
  void mirror() {
    for_each_row([](std::uint8_t *begin, std::uint8_t *end) { std::reverse(begin, end); });
  }

  qr::Luma luma() const {
    return {plane_.data(), plane_.stride(), plane_.width(), plane_.height()};
  }

 private:
  template <typename Change>
  void for_each_row(Change change) {
    for (int y = 0; y < plane_.height(); ++y) {
      std::uint8_t *row = plane_.row(y);
      change(row, row + plane_.width());
    }
  }

  GuardedPlane plane_;
};

std::vector<Code> read(const std::string &word, const CodePicture &picture) {
  return read_with_all(make_readers(word), picture.luma());
}

// Each reader by its own name.
class EachReader : public testing::TestWithParam<std::string> {};

TEST_P(EachReader, TellsAllOfACode) {
  const std::string text = "https://example.org/one";  // version 2 at level M
  const std::vector<Code> codes = read(GetParam(), CodePicture(320, 240, text, 5));
  ASSERT_EQ(codes.size(), 1U);
  EXPECT_EQ(codes[0].bytes, text);
  EXPECT_EQ(codes[0].size, 25);
  EXPECT_EQ(codes[0].reader, GetParam());
}

TEST_P(EachReader, GivesCornersClockwiseFromTheCodesTopLeft) {
  constexpr double kQuarter = 1.5707963267948966;
  for (int turns = 0; turns < 4; ++turns) {
    SCOPED_TRACE(turns);
    const double angle = turns * kQuarter + 0.2;
    const CodePicture picture(320, 240, "https://example.org/one", 5, static_cast<float>(angle));
    const std::vector<Code> codes = read(GetParam(), picture);
    ASSERT_EQ(codes.size(), 1U);
    const double reach = 25 * 5 / std::sqrt(2.0);
    for (std::size_t i = 0; i < 4; ++i) {
      const double direction = angle + kQuarter * (static_cast<double>(i) - 1.5);
      EXPECT_NEAR(codes[0].corners[i].x, 160 + reach * std::cos(direction), 4) << "corner " << i;
      EXPECT_NEAR(codes[0].corners[i].y, 120 + reach * std::sin(direction), 4) << "corner " << i;
    }
  }
}

TEST_P(EachReader, GivesEveryByte) {
  const std::string bytes("\x00\xff middle \x00 end\x80", 17);
  const std::vector<Code> codes = read(GetParam(), CodePicture(320, 240, bytes, 5));
  ASSERT_EQ(codes.size(), 1U);
  EXPECT_EQ(codes[0].bytes, bytes);
}

TEST_P(EachReader, TakesEverySizeFromOneByOne) {
  const std::vector<std::uint8_t> gray(std::size_t{40} * 40, 90);
  const app::Readers readers = make_readers(GetParam());
  for (int width = 1; width <= 40; ++width) {
    for (const int height : {1, 2, 5, 21, 40}) {
      EXPECT_TRUE(read_with_all(readers, {gray.data(), 40, width, height}).empty());
    }
  }
}

std::vector<std::string> each_reader() {
  std::vector<std::string> words = app::reader_words();
  words.erase(std::remove(words.begin(), words.end(), "all"), words.end());
  return words;
}

INSTANTIATE_TEST_SUITE_P(Readers, EachReader, testing::ValuesIn(each_reader()),
                         [](const auto &word) { return word.param; });

TEST(Readers, SayACodeThatAllSeeOnce) {
  const std::vector<Code> codes = read("all", CodePicture(320, 240, "seen by all", 5));
  ASSERT_EQ(codes.size(), 1U);
  EXPECT_EQ(codes[0].reader, "quirc");
}

TEST(Readers, ReadSmallModulesAtTwiceTheSize) {
  const CodePicture picture(120, 90, "https://example.org/one", 1.6F, 0.3F);
  EXPECT_TRUE(read("quirc", picture).empty());
  const std::vector<Code> codes = read("quirc2x", picture);
  ASSERT_EQ(codes.size(), 1U);
  EXPECT_EQ(codes[0].bytes, "https://example.org/one");
}

TEST(Readers, LeaveOutWhatIsTooLargeToDouble) {
  const std::vector<std::uint8_t> gray(std::size_t{4097} * 4096, 90);
  EXPECT_TRUE(read_with_all(make_readers("quirc2x"), {gray.data(), 4097, 4097, 4096}).empty());
}

TEST(Readers, ReadInvertedCodesWithZxing) {
  if (!app::built_with_zxing()) GTEST_SKIP() << "built without ZXing";
  CodePicture picture(320, 240, "light on dark", 5);
  picture.invert();
  EXPECT_TRUE(read("quirc", picture).empty());
  const std::vector<Code> codes = read("all", picture);
  ASSERT_EQ(codes.size(), 1U);
  EXPECT_EQ(codes[0].bytes, "light on dark");
  EXPECT_EQ(codes[0].reader, "zxing");
}

TEST(Readers, ReadMirroredCodes) {
  CodePicture picture(320, 240, "in a mirror", 5);
  picture.mirror();
  const std::vector<Code> codes = read("all", picture);
  ASSERT_EQ(codes.size(), 1U);
  EXPECT_EQ(codes[0].bytes, "in a mirror");
}

// A sharp picture of a code of libqrencode's.
std::vector<std::uint8_t> picture_of(const QRcode &code, int module, int quiet, int *side) {
  *side = (code.width + 2 * quiet) * module;
  std::vector<std::uint8_t> samples(static_cast<std::size_t>(*side) *
                                    static_cast<std::size_t>(*side));
  for (int y = 0; y < *side; ++y) {
    for (int x = 0; x < *side; ++x) {
      const int column = x / module - quiet;
      const int row = y / module - quiet;
      const bool inside = column >= 0 && row >= 0 && column < code.width && row < code.width;
      const bool dark = inside && (code.data[row * code.width + column] & 1) != 0;
      samples[static_cast<std::size_t>(y * *side + x)] = dark ? 20 : 230;
    }
  }
  return samples;
}

TEST(Readers, KnowTheSizeOfEveryVersionAndLevelWithZxing) {
  if (!app::built_with_zxing()) GTEST_SKIP() << "built without ZXing";
  const app::Readers readers = make_readers("zxing");
  for (int version = 1; version <= 40; version += quick() ? 13 : 1) {
    for (const QRecLevel level : {QR_ECLEVEL_L, QR_ECLEVEL_M, QR_ECLEVEL_Q, QR_ECLEVEL_H}) {
      SCOPED_TRACE("version " + std::to_string(version) + ", level " + std::to_string(level));
      const std::unique_ptr<QRcode, void (*)(QRcode *)> code(
          QRcode_encodeString8bit("sizes", version, level), QRcode_free);
      ASSERT_NE(code, nullptr);
      int side = 0;
      const std::vector<std::uint8_t> samples = picture_of(*code, 3, 4, &side);
      const std::vector<Code> codes = read_with_all(readers, {samples.data(), side, side, side});
      ASSERT_EQ(codes.size(), 1U);
      EXPECT_EQ(codes[0].bytes, "sizes");
      EXPECT_EQ(codes[0].size, code->width);
    }
  }
}

}  // namespace
}  // namespace nox::test
