// The polyphase scalers against the plain one, bit for bit, on every instruction set.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "scaler/frame_fixture.h"
#include "scaler/scaler.h"
#include "scaler/scaler_plain.h"
#include "support/quick.h"
#include "support/random.h"

#define HWY_WANT_AVX3_DL  // as the kernels do
#include <hwy/tests/hwy_gtest.h>

namespace {

using nox::test::Content;
using nox::test::GuardedFrame;
using nox::test::Picture;
using nox::test::PlainSizes;

struct Pictures {
  Picture src;
  Picture scaled;
};

// Source and plain result of a request, made once for all instruction sets.
const Pictures &pictures(const PlainSizes &s, Content content,
                         Picture (*plain)(const Picture &, const PlainSizes &)) {
  static std::map<std::tuple<int, int, int, int, bool, Content, void *>, Pictures> made;
  const auto key = std::make_tuple(s.in_width, s.in_height, s.out_width, s.out_height, s.half_plane,
                                   content, reinterpret_cast<void *>(plain));
  const auto found = made.find(key);
  if (found != made.end()) return found->second;
  nox::test::Random random(static_cast<std::uint64_t>(s.in_width * 7919 + s.in_height));
  const int part = s.half_plane ? 2 : 1;
  Pictures pair;
  pair.src = make_picture(s.in_width / part, s.in_height / part, content, random);
  pair.scaled = plain(pair.src, s);
  return made.emplace(key, std::move(pair)).first->second;
}

std::string describe(const PlainSizes &s) {
  return std::to_string(s.in_width) + " by " + std::to_string(s.in_height) + " to " +
         std::to_string(s.out_width) + " by " + std::to_string(s.out_height);
}

// One plane through scaler_select and scaler_process.
void expect_plane(const PlainSizes &s, Content content, int padding) {
  SCOPED_TRACE(describe(s));
  const Pictures &wanted = pictures(s, content, nox::test::scale_plain);
  GuardedFrame src;
  src.add(wanted.src, padding);
  GuardedFrame dst;
  dst.add(s.out_width, s.out_height, padding);
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {s.in_width, s.in_height}, {s.out_width, s.out_height}), 1);
  scaler_process(&scaler, &src.record(), &dst.record());
  scaler_destroy(&scaler);
  dst.expect(0, wanted.scaled);
}

// All planes of a 4:2:0 frame through one scaler.
void expect_frame(const PlainSizes &s, Content content, int planes) {
  SCOPED_TRACE(describe(s));
  const PlainSizes half = {s.in_width, s.in_height, s.out_width, s.out_height, true};
  const auto sizes = [&](int p) { return p == 1 || p == 2 ? half : s; };
  GuardedFrame src;
  GuardedFrame dst;
  for (int p = 0; p < planes; ++p) {
    const int part = sizes(p).half_plane ? 2 : 1;
    src.add(pictures(sizes(p), content, nox::test::scale_plain).src, p);
    dst.add(s.out_width / part, s.out_height / part, 3 - p);
  }
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {s.in_width, s.in_height}, {s.out_width, s.out_height}), 1);
  scaler_process(&scaler, &src.record(), &dst.record());
  scaler_destroy(&scaler);
  for (int p = 0; p < planes; ++p) {
    dst.expect(static_cast<std::size_t>(p),
               pictures(sizes(p), content, nox::test::scale_plain).scaled);
  }
}

constexpr ScalerSize kCameraSizes[] = {
    {160, 120},  {176, 144},  {320, 180},  {320, 240},   {352, 288},   {424, 240},   {640, 360},
    {640, 480},  {720, 480},  {720, 576},  {800, 600},   {848, 480},   {854, 480},   {960, 540},
    {960, 720},  {1024, 576}, {1024, 768}, {1280, 720},  {1280, 800},  {1280, 960},  {1280, 1024},
    {1366, 768}, {1440, 900}, {1600, 900}, {1600, 1200}, {1920, 1080}, {2560, 1440}, {3840, 2160},
};

class FilteredScaler : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(FilteredScaler);

TEST_P(FilteredScaler, CameraSizesAndTheirHalfSizePlanesToTheWorkSize) {
  int i = 0;
  for (const ScalerSize &size : kCameraSizes) {
    const auto content = static_cast<Content>(i++ % 3);
    if (nox::test::quick() && (size.width > 1280 || i % 3 != 0)) continue;
    expect_plane({size.width, size.height, 448, 252}, content, 5);
    expect_plane({size.width / 2, size.height / 2, 448, 252}, content, 0);
  }
}

TEST_P(FilteredScaler, OvershootingBarsSaturateAndClamp) {
  for (const Content content : {Content::kExtremes, Content::kCheckers}) {
    expect_plane({640, 360, 448, 252}, content, 0);  // 4 taps
    expect_plane({512, 288, 448, 252}, content, 0);  // 4 sharp taps
    expect_plane({450, 254, 448, 252}, content, 0);  // a tap of 1 (128 in fixed point)
    expect_plane({448, 253, 448, 252}, content, 0);
    expect_plane({300, 160, 448, 252}, content, 0);   // enlarged
    expect_plane({960, 540, 448, 252}, content, 0);   // 8 taps
    expect_plane({1280, 720, 448, 252}, content, 0);  // halved, then 4 taps
  }
}

TEST_P(FilteredScaler, ExactFractions) {
  expect_plane({560, 320, 448, 256}, Content::kExtremes, 1);  // 5:4
  expect_plane({672, 384, 448, 256}, Content::kExtremes, 1);  // 3:2
  expect_plane({1344, 768, 448, 256}, Content::kExtremes, 1);
  expect_plane({96, 64, 48 * 4, 32 * 4}, Content::kExtremes, 1);
}

TEST_P(FilteredScaler, EachNumberOfHalvings) {
  for (const int ratio : {4, 7, 9, 12, 18, 25, 36, 40}) {
    expect_plane({40 * ratio, 12 * ratio, 40, 12}, Content::kNoise, 2);
    expect_plane({40 * ratio - 3, 12 * ratio - 1, 40, 12}, Content::kCheckers, 0);
  }
}

TEST_P(FilteredScaler, PlanesOfOneFrame) {
  expect_frame({1280, 720, 448, 252}, Content::kNoise, 3);
  expect_frame({640, 480, 448, 252}, Content::kExtremes, 4);
  expect_frame({896, 504, 448, 252}, Content::kNoise, 3);
  expect_frame({320, 240, 456, 252}, Content::kCheckers, 4);
  expect_frame({4 * 40 * 3, 4 * 12 * 3, 40, 12}, Content::kNoise, 3);
}

TEST_P(FilteredScaler, PlanesOfFramesWithOddSizes) {
  expect_frame({1281, 721, 448, 252}, Content::kNoise, 3);
  expect_frame({641, 479, 448, 252}, Content::kNoise, 3);
  expect_frame({183, 97, 104, 60}, Content::kExtremes, 3);
  expect_frame({1115, 627, 104, 60}, Content::kNoise, 4);
}

TEST_P(FilteredScaler, RandomSizesBothWays) {
  constexpr std::uint64_t kSeed = 44;
  nox::test::Random random(kSeed);
  const int count = nox::test::quick() ? 40 : 400;
  for (int i = 0; i < count; ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", try " << i);
    const ScalerSize out = {8 * random.between(1, 24), 2 * random.between(1, 60)};
    const double zoom = i % 4 == 0 ? 0.3 : i % 4 == 1 ? 1.5 : i % 4 == 2 ? 2.6 : 6.0;
    const auto side = [&](int size) {
      return random.between(1, static_cast<int>(size * zoom) + 1);
    };
    const PlainSizes s = {side(out.width), side(out.height), out.width, out.height};
    const auto content = static_cast<Content>(i % 3);
    if (s.in_width > 1 && s.in_height > 1 && random.chance(0.3)) {
      expect_frame(s, content, 3);
    } else {
      expect_plane(s, content, random.between(0, 20));
    }
  }
}

TEST_P(FilteredScaler, MixedDirectionsAndEveryFilterLength) {
  for (int ratio = 2; ratio <= 11; ++ratio) {
    expect_plane({80 * ratio, 10, 80, 24}, Content::kNoise, 0);
    expect_plane({40, 24 * ratio, 80, 24}, Content::kNoise, 0);
  }
  for (int quarter = 4; quarter <= 34; ++quarter) {
    const PlainSizes s = {20 * quarter, 6 * quarter, 80, 24};
    SCOPED_TRACE(describe(s));
    const Pictures &wanted = pictures(s, Content::kExtremes, nox::test::separable_plain);
    GuardedFrame src;
    src.add(wanted.src, 0);
    GuardedFrame dst;
    dst.add(80, 24, 0);
    Scaler scaler = {&separable_scaler, s.in_width, s.in_height, 80, 24, nullptr};
    ASSERT_EQ(separable_scaler.init(&scaler), 1);
    EXPECT_EQ(separable_scaler.process(&scaler, &src.record(), &dst.record()), 1);
    separable_scaler.destroy(&scaler);
    dst.expect(0, wanted.scaled);
  }
}

TEST_P(FilteredScaler, RatiosBeyondForty) {
  expect_plane({4000, 100, 80, 2}, Content::kNoise, 0);
  expect_plane({8 * 300, 3, 8, 2}, Content::kNoise, 0);
}

TEST_P(FilteredScaler, TinyPictures) {
  for (int width = 1; width <= 20; ++width) {
    for (int height = 1; height <= 9; ++height) {
      expect_plane({width, height, 8, 2}, Content::kNoise, 1);
      expect_plane({width, height, 24, 20}, Content::kExtremes, 0);
    }
  }
}

TEST_P(FilteredScaler, AReducedSideOfNoSamplesWritesNothing) {
  // Four halvings leave nothing of 7 rows.
  EXPECT_TRUE(
      pictures({320, 7, 8, 2}, Content::kNoise, nox::test::scale_plain).scaled.samples.empty());
  expect_plane({320, 7, 8, 2}, Content::kNoise, 0);
  expect_frame({320, 7, 8, 2}, Content::kNoise, 3);
  expect_frame({320, 32, 8, 2}, Content::kNoise, 3);
}

TEST_P(FilteredScaler, SidesBeyond65536Wrap) {
  expect_plane({70000, 3, 4000, 2}, Content::kNoise, 0);
  if (!nox::test::quick()) expect_plane({8, 65600, 8, 65000}, Content::kNoise, 0);
}

void expect_misfits_left_alone(int width, int height) {
  nox::test::Random random(45);
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {width, height}, {448, 252}), 1);
  GuardedFrame src;
  src.add(make_picture(width, height - 1, Content::kNoise, random), 0);
  src.add(make_picture(width / 2 - 1, height / 2, Content::kNoise, random), 0);
  src.add(make_picture(width / 2, height / 2, Content::kNoise, random), 0);
  GuardedFrame dst;
  dst.add(448, 252, 0);
  dst.add(224, 126, 0);
  dst.add(223, 126, 0);
  scaler_process(&scaler, &src.record(), &dst.record());
  for (std::size_t p = 0; p < 3; ++p) dst.expect(p, {});
  scaler_destroy(&scaler);
}

TEST(FilteredScalerFrames, PlanesThatDoNotFitTheSelectionAreLeftAlone) {
  expect_misfits_left_alone(640, 480);
}

TEST(FilteredScalerFrames, PlanesThatDoNotFitAreLeftAloneWhenHalvedFirstToo) {
  expect_misfits_left_alone(3584, 2016);
}

TEST(FilteredScalerFrames, PlanesThatAreNotThereAreSkipped) {
  nox::test::Random random(46);
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {640, 480}, {448, 252}), 1);
  GuardedFrame src;
  src.add(make_picture(640, 480, Content::kNoise, random), 0);
  src.add(make_picture(320, 240, Content::kNoise, random), 0);
  GuardedFrame gray;
  gray.add(448, 252, 0);
  scaler_process(&scaler, &src.record(), &gray.record());  // chroma has nowhere to go
  NoxVideoFrame empty = {};
  empty.n_planes = 9;
  scaler_process(&scaler, &empty, &gray.record());
  scaler_process(&scaler, &src.record(), &empty);
  scaler_destroy(&scaler);
}

TEST(FilteredScalerFrames, RowsThatLieUpwardsAreReadAndWritten) {
  const PlainSizes s = {640, 480, 448, 252};
  const Pictures &wanted = pictures(s, Content::kNoise, nox::test::scale_plain);
  GuardedFrame src;
  src.add(wanted.src, 0);
  GuardedFrame dst;
  dst.add(448, 252, 0);
  const auto turn_over = [](NoxVideoFrame frame) {
    frame.planes[0] += static_cast<std::ptrdiff_t>(frame.strides[0]) * (frame.height - 1);
    frame.strides[0] = -frame.strides[0];
    return frame;
  };
  const NoxVideoFrame from = turn_over(src.record());
  NoxVideoFrame to = turn_over(dst.record());
  Scaler scaler = {};
  ASSERT_EQ(scaler_select(&scaler, {s.in_width, s.in_height}, {s.out_width, s.out_height}), 1);
  scaler_process(&scaler, &from, &to);
  scaler_destroy(&scaler);
  Picture turned = wanted.src;
  for (int y = 0; y < 480; ++y) {
    for (int x = 0; x < 640; ++x) {
      turned.at(x, y) = static_cast<std::uint8_t>(wanted.src.at(x, 479 - y));
    }
  }
  Picture scaled = nox::test::scale_plain(turned, s);
  Picture back = scaled;
  for (int y = 0; y < 252; ++y) {
    for (int x = 0; x < 448; ++x) {
      back.at(x, y) = static_cast<std::uint8_t>(scaled.at(x, 251 - y));
    }
  }
  dst.expect(0, back);
}

}  // namespace
