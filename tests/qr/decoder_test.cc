// The decoder on generated pictures, beside quirc called directly.
#include "qr/decoder.h"

#include <gtest/gtest.h>
#include <quirc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "scenes/qr_scene.h"
#include "support/guarded_plane.h"
#include "support/qr_picture.h"
#include "video/nox_video_frame.h"

namespace nox::test {
namespace {

qr::Luma luma_of(const NoxVideoFrame &frame) {
  return {frame.planes[0], frame.strides[0], frame.width, frame.height};
}

std::vector<std::string> payloads(const qr::Decoder &decoder) {
  std::vector<std::string> read;
  for (const qr::Code &code : decoder.codes()) {
    if (code.error == nullptr) read.push_back(code.payload);
  }
  return read;
}

TEST(QrDecoder, TellsAllOfACode) {
  const std::string text = "https://example.org/one";  // 23 bytes: version 2 at level M
  const QrPicture picture(320, 240, {text});
  qr::Decoder decoder;
  ASSERT_TRUE(decoder.decode(luma_of(picture.frame())));
  ASSERT_EQ(decoder.codes().size(), 1U);
  const qr::Code &code = decoder.codes()[0];
  EXPECT_EQ(code.payload, text);
  EXPECT_EQ(code.version, 2);
  EXPECT_EQ(code.size, 25);
  EXPECT_EQ(code.error, nullptr);
}

TEST(QrDecoder, GivesCornersInPixelsClockwiseFromTopLeft) {
  const QrPicture picture(320, 240, {"https://example.org/one"});
  qr::Decoder decoder;
  decoder.decode(luma_of(picture.frame()));
  ASSERT_EQ(decoder.codes().size(), 1U);
  // 25 modules of 5 pixels around the middle.
  constexpr double kHalf = 25 * 5 / 2.0;
  const double x[] = {160 - kHalf, 160 + kHalf, 160 + kHalf, 160 - kHalf};
  const double y[] = {120 - kHalf, 120 - kHalf, 120 + kHalf, 120 + kHalf};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(decoder.codes()[0].corners[i].x, x[i], 2) << "corner " << i;
    EXPECT_NEAR(decoder.codes()[0].corners[i].y, y[i], 2) << "corner " << i;
  }
}

TEST(QrDecoder, GivesEveryByteOfAPayload) {
  const std::string bytes("\x00\xff middle \x00 end\x80", 17);
  const QrPicture picture(320, 240, {bytes});
  qr::Decoder decoder;
  decoder.decode(luma_of(picture.frame()));
  EXPECT_EQ(payloads(decoder), std::vector{bytes});
}

TEST(QrDecoder, KeepsTheOrderAndTheFieldsOfQuirc) {
  NoxVideoFrame frame;
  nox_video_frame_alloc(&frame, kNoxFormatI420, 960, 320);
  scenes::QrScene scene(960, 320, {"left", "in the middle", "right, with a longer text"});
  qr::Decoder decoder;
  quirc *reference = quirc_new();
  quirc_resize(reference, frame.width, frame.height);
  for (std::uint32_t index = 0; index < 90; index += 15) {
    SCOPED_TRACE(index);
    scene.render(index, &frame);
    ASSERT_TRUE(decoder.decode(luma_of(frame)));
    std::uint8_t *image = quirc_begin(reference, nullptr, nullptr);
    for (int y = 0; y < frame.height; ++y) {
      std::copy_n(frame.planes[0] + static_cast<std::ptrdiff_t>(y) * frame.strides[0], frame.width,
                  image + static_cast<std::ptrdiff_t>(y) * frame.width);
    }
    quirc_end(reference);
    ASSERT_EQ(decoder.codes().size(), static_cast<std::size_t>(quirc_count(reference)));
    for (std::size_t i = 0; i < decoder.codes().size(); ++i) {
      const qr::Code &code = decoder.codes()[i];
      quirc_code found;
      quirc_data data;
      quirc_extract(reference, static_cast<int>(i), &found);
      const quirc_decode_error_t error = quirc_decode(&found, &data);
      EXPECT_EQ(code.error == nullptr, error == QUIRC_SUCCESS);
      EXPECT_EQ(code.size, found.size);
      for (std::size_t corner = 0; corner < 4; ++corner) {
        EXPECT_EQ(code.corners[corner].x, found.corners[corner].x);
        EXPECT_EQ(code.corners[corner].y, found.corners[corner].y);
      }
      if (error != QUIRC_SUCCESS) continue;
      EXPECT_EQ(code.version, data.version);
      EXPECT_EQ(code.payload, std::string(reinterpret_cast<const char *>(data.payload),
                                          static_cast<std::size_t>(data.payload_len)));
    }
  }
  quirc_destroy(reference);
  nox_video_frame_free_planes(&frame);
}

// Black over all of the code but its three large squares and the lines between them.
void spoil(NoxVideoFrame *frame, int left, int top, int module) {
  for (int y = top + 9 * module; y < top + 20 * module; ++y) {
    std::fill_n(
        frame->planes[0] + static_cast<std::ptrdiff_t>(y) * frame->strides[0] + left + 9 * module,
        7 * module, std::uint8_t{16});
  }
}

TEST(QrDecoder, SaysWhyACodeIsNotRead) {
  const QrPicture picture(320, 240, {"https://example.org/one"});
  NoxVideoFrame frame = picture.frame();
  spoil(&frame, 160 - 62, 120 - 62, 5);
  qr::Decoder decoder;
  ASSERT_TRUE(decoder.decode(luma_of(frame)));
  ASSERT_EQ(decoder.codes().size(), 1U);
  const qr::Code &code = decoder.codes()[0];
  EXPECT_STREQ(code.error, quirc_strerror(QUIRC_ERROR_DATA_ECC));
  EXPECT_EQ(code.payload, "");
  EXPECT_EQ(code.version, 0);
  EXPECT_EQ(code.size, 25);
}

// The picture as a mirror on its left side shows it.
NoxVideoFrame mirror(const NoxVideoFrame &frame) {
  for (int y = 0; y < frame.height; ++y) {
    std::uint8_t *row = frame.planes[0] + static_cast<std::ptrdiff_t>(y) * frame.strides[0];
    std::reverse(row, row + frame.width);
  }
  return frame;
}

TEST(QrDecoder, ReadsMirroredCodesWhereThatIsAskedFor) {
  const QrPicture picture(320, 240, {"https://example.org/one"});
  const NoxVideoFrame mirrored = mirror(picture.frame());
  qr::Decoder plain;
  plain.decode(luma_of(mirrored));
  ASSERT_EQ(plain.codes().size(), 1U);
  EXPECT_NE(plain.codes()[0].error, nullptr);

  qr::Decoder decoder(qr::Mirrored::kRead);
  decoder.decode(luma_of(mirrored));
  ASSERT_EQ(decoder.codes().size(), 1U);
  const qr::Code &code = decoder.codes()[0];
  EXPECT_EQ(code.error, nullptr);
  EXPECT_EQ(code.payload, "https://example.org/one");
  EXPECT_EQ(code.version, 2);
  // The code's own top left is on the right, its bottom left below that.
  EXPECT_GT(code.corners[0].x, code.corners[1].x + 100);
  EXPECT_GT(code.corners[3].y, code.corners[0].y + 100);
}

TEST(QrDecoder, TreatsUprightCodesAlikeInEitherMode) {
  const QrPicture picture(320, 240, {"upright"});
  NoxVideoFrame spoiled_frame = picture.frame();
  qr::Decoder decoder(qr::Mirrored::kRead);
  decoder.decode(luma_of(picture.frame()));
  EXPECT_EQ(payloads(decoder), std::vector<std::string>{"upright"});
  spoil(&spoiled_frame, 160 - 52, 120 - 52, 5);
  decoder.decode(luma_of(spoiled_frame));
  ASSERT_EQ(decoder.codes().size(), 1U);
  EXPECT_STREQ(decoder.codes()[0].error, quirc_strerror(QUIRC_ERROR_DATA_ECC));
}

TEST(QrDecoder, ForgetsTheCodesOfTheLastPicture) {
  const QrPicture picture(320, 240, {"seen once"});
  const std::vector<std::uint8_t> gray(std::size_t{320} * 240, 128);
  qr::Decoder decoder;
  decoder.decode(luma_of(picture.frame()));
  EXPECT_EQ(payloads(decoder), std::vector<std::string>{"seen once"});
  decoder.decode({gray.data(), 320, 320, 240});
  EXPECT_TRUE(decoder.codes().empty());
}

TEST(QrDecoder, FollowsTheSizeOfThePicture) {
  qr::Decoder decoder;
  for (const auto &[width, height] : {std::pair{320, 240}, {640, 480}, {160, 120}, {320, 240}}) {
    const QrPicture picture(width, height, {std::to_string(width)});
    decoder.decode(luma_of(picture.frame()));
    EXPECT_EQ(payloads(decoder), std::vector{std::to_string(width)});
  }
}

TEST(QrDecoder, ReadsNoByteOutsideThePicture) {
  const QrPicture picture(320, 240, {"guarded"});
  const qr::Luma luma = luma_of(picture.frame());
  for (const int padding : {0, 1, 64}) {
    SCOPED_TRACE(padding);
    GuardedPlane plane(320, 240, 320 + padding);
    plane.fill(0);
    for (int y = 0; y < 240; ++y) std::copy_n(luma.samples + y * luma.stride, 320, plane.row(y));
    qr::Decoder decoder;
    decoder.decode({plane.data(), plane.stride(), 320, 240});
    EXPECT_EQ(payloads(decoder), std::vector<std::string>{"guarded"});
  }
}

TEST(QrDecoder, TakesEverySizeFromOneByOne) {
  const std::vector<std::uint8_t> gray(std::size_t{33} * 33, 90);
  qr::Decoder decoder;
  for (int width = 1; width <= 33; ++width) {
    for (const int height : {1, 2, 5, 21, 33}) {
      EXPECT_TRUE(decoder.decode({gray.data(), 33, width, height}));
      EXPECT_TRUE(decoder.codes().empty());
    }
  }
}

// A size for which there is never memory, refused before a sample is read.
TEST(QrDecoder, RefusesWhatMemoryCannotHoldAndGoesOn) {
  const QrPicture picture(320, 240, {"before and after"});
  qr::Decoder decoder;
  ASSERT_TRUE(decoder.decode(luma_of(picture.frame())));
  EXPECT_FALSE(decoder.decode({nullptr, 0, -1, 1}));
  EXPECT_TRUE(decoder.codes().empty());
  ASSERT_TRUE(decoder.decode(luma_of(picture.frame())));
  EXPECT_EQ(payloads(decoder), std::vector<std::string>{"before and after"});
}

}  // namespace
}  // namespace nox::test
