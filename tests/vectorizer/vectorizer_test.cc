#include "vectorizer/vectorizer.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/quick.h"
#include "support/random.h"
#include "vectorizer/changing_picture.h"
#include "vectorizer/planar_frame.h"
#include "vectorizer/vectorizer_plain.h"

namespace nox::test {
namespace {

struct StateDeleter {
  void operator()(VectorizerState *state) const { vectorizer_free(state); }
};
using State = std::unique_ptr<VectorizerState, StateDeleter>;

State new_state() {
  return State(vectorizer_new());
}

// The vectorizer beside its plain twin, on frames of one size and layout.
class Twins {
 public:
  Twins(std::int32_t width, std::int32_t height, const PlaneLayout &layout,
        std::uint32_t format = kNoxFormatI420)
      : width_(width), height_(height), layout_(layout), format_(format), state_(new_state()) {}

  // Both draw the same frames: in place when `in_place`, else from one frame into another one.
  // Every byte of the planes is compared after every frame.
  void expect_equal(int frames, bool in_place, std::uint64_t seed) {
    PlanarFrame in = frame(), out = frame(), expected = frame();
    ChangingPicture picture(in, seed);
    Random random(seed);
    for (int i = 1; i <= frames; ++i) {
      picture.next(&in);
      const std::vector<std::uint8_t> source = in.bytes();
      if (in_place) {
        out.set_bytes(source);
      } else {
        out.randomize(&random);
      }
      expected.set_bytes(out.bytes());
      plain_.process(in_place ? expected.get() : in.get(), expected.get());
      const NoxVideoFrame &from = in_place ? out.get() : in.get();
      ASSERT_EQ(vectorizer_process(state_.get(), &from, &out.get()), 1);
      ASSERT_TRUE(out.bytes() == expected.bytes()) << "frame " << i << " seed " << seed;
      ASSERT_TRUE(in.bytes() == source) << "frame " << i;
    }
  }

 private:
  PlanarFrame frame() const { return {format_, width_, height_, layout_}; }

  std::int32_t width_;
  std::int32_t height_;
  PlaneLayout layout_;
  std::uint32_t format_;
  State state_;
  PlainVectorizer plain_;
};

constexpr std::pair<std::int32_t, std::int32_t> kSizes[] = {
    {1, 1},   {1, 9},   {9, 1},   {2, 2},   {3, 3},   {3, 20},  {4, 4},
    {5, 3},   {5, 5},   {7, 40},  {16, 4},  {17, 5},  {31, 15}, {33, 16},
    {35, 17}, {63, 18}, {64, 33}, {65, 48}, {67, 34}, {130, 70}};

class EveryTarget : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(EveryTarget);

TEST_P(EveryTarget, EqualsPlainForThe130FirstFramesOfEverySize) {
  std::uint64_t seed = 50;
  for (const auto &[width, height] : kSizes) {
    SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
    const auto padding = static_cast<std::int32_t>(seed % 7);
    Twins(width, height, {padding, padding / 2, seed % 3 == 0})
        .expect_equal(quick() ? 3 : 130, seed % 2 == 0, seed);
    ++seed;
    if (HasFatalFailure()) return;
  }
}

class EverySize : public testing::TestWithParam<std::pair<std::int32_t, std::int32_t>> {};

TEST_P(EverySize, EqualsPlainForMoreThan620Frames) {
  const auto &[width, height] = GetParam();
  if (quick() && width > 17) GTEST_SKIP() << "too slow under a checker";
  Twins(width, height, {}).expect_equal(640, true, 71);
  Twins(width, height, {12, 8, false}).expect_equal(640, false, 72);
}

// Rows that overlap by a sample among them: half an odd width, rounded down, is one too short.
TEST_P(EverySize, EqualsPlainWithTruncatedChroma) {
  const auto &[width, height] = GetParam();
  const int frames = quick() ? 5 : 150;
  Twins(width, height, {0, 0, true}).expect_equal(frames, true, 73);
  Twins(width, height, {0, 0, true}).expect_equal(frames, false, 74);
  Twins(width, height, {3, 1, true}).expect_equal(frames, true, 75);
}

TEST_P(EverySize, LeavesTheAlphaPlaneAlone) {
  const auto &[width, height] = GetParam();
  Twins(width, height, {1, 2, false}, kNoxFormatA420).expect_equal(quick() ? 3 : 20, true, 76);
  Twins(width, height, {1, 2, false}, kNoxFormatA420).expect_equal(quick() ? 3 : 20, false, 77);
}

INSTANTIATE_TEST_SUITE_P(Sizes, EverySize, testing::ValuesIn(kSizes), [](const auto &size) {
  return std::to_string(size.param.first) + "by" + std::to_string(size.param.second);
});

// Past the 100th frame; the smaller sizes go past the 500th.
TEST(Vectorizer, EqualsPlainAt640By360) {
  Twins(640, 360, {}).expect_equal(quick() ? 2 : 110, true, 78);
}

// A vertical edge in a 16 by 16 picture, or none.
void fill(PlanarFrame *frame, bool edge) {
  for (int p = 0; p < 3; ++p) frame->plane(p).fill(40);
  if (!edge) return;
  for (std::int32_t y = 0; y < frame->get().height; ++y) {
    std::fill_n(frame->plane(0).row(y) + 8, 8, 200);
  }
}

constexpr int kWashed40 = (255 * 48 + 40 * 16 + 32) >> 6;

// Draws pictures with or without the edge and tells where it shows.
class EdgeVideo {
 public:
  // Whether the edge's column 7 is at full strength in the next drawing.
  bool draw(bool edge) {
    fill(&frame_, edge);
    vectorizer_process(state_.get(), &frame_.get(), &frame_.get());
    const int luma = frame_.plane(0).row(8)[7];
    EXPECT_TRUE(luma == 40 || luma == kWashed40) << luma;
    return luma == 40;
  }
  int draw_many(int frames, bool edge) {
    int shown = 0;
    for (int i = 0; i < frames; ++i) shown += draw(edge) ? 1 : 0;
    return shown;
  }
  const VectorizerState *state() const { return state_.get(); }
  PlanarFrame &frame() { return frame_; }

 private:
  State state_ = new_state();
  PlanarFrame frame_{kNoxFormatI420, 16, 16};
};

TEST(Vectorizer, ShowsAnEdgeFromFrame100On) {
  EdgeVideo video;
  EXPECT_EQ(video.draw_many(99, true), 0);
  EXPECT_EQ(video.draw_many(50, true), 50);
}

TEST(Vectorizer, ShowsNothingAfter99FramesOfAnEdge) {
  EdgeVideo video;
  EXPECT_EQ(video.draw_many(99, true), 0);
  EXPECT_EQ(video.draw_many(1, false), 0);
  EXPECT_EQ(video.draw_many(99, true), 0);
  EXPECT_TRUE(video.draw(true));
}

TEST(Vectorizer, HoldsAResultOfFrameTAt499MoreAndNotAt500) {
  EdgeVideo video;
  video.draw_many(99, true);
  EXPECT_TRUE(video.draw(true));  // t, the only frame with a result
  EXPECT_EQ(video.draw_many(499, false), 499);
  EXPECT_FALSE(video.draw(false));
}

TEST(Vectorizer, HoldsFromTheLastResultOn) {
  EdgeVideo video;
  video.draw_many(700, true);
  EXPECT_EQ(video.draw_many(600, false), 499);
}

TEST(Vectorizer, DropsHistoryWhenOnlyTheHeightChanges) {
  const State state = new_state();
  PlanarFrame low(kNoxFormatI420, 16, 16), high(kNoxFormatI420, 16, 18);
  for (int i = 0; i < 150; ++i) {
    fill(&low, true);
    vectorizer_process(state.get(), &low.get(), &low.get());
  }
  ASSERT_EQ(low.plane(0).row(8)[7], 40);
  fill(&high, true);
  vectorizer_process(state.get(), &high.get(), &high.get());
  EXPECT_EQ(high.plane(0).row(8)[7], kWashed40);
  fill(&low, true);
  vectorizer_process(state.get(), &low.get(), &low.get());
  EXPECT_EQ(low.plane(0).row(8)[7], kWashed40);
}

TEST(Vectorizer, WashesLumaAndChromaOut) {
  const State state = new_state();
  PlanarFrame frame(kNoxFormatI420, 256, 2);
  for (std::int32_t x = 0; x < 256; ++x) frame.plane(0).row(0)[x] = static_cast<std::uint8_t>(x);
  frame.plane(1).fill(0);
  frame.plane(2).fill(255);
  vectorizer_process(state.get(), &frame.get(), &frame.get());
  EXPECT_EQ(frame.plane(0).row(0)[0], 191);
  EXPECT_EQ(frame.plane(0).row(0)[255], 255);
  EXPECT_EQ(frame.plane(1).row(0)[0], 96);
  EXPECT_EQ(frame.plane(2).row(0)[0], 160);
}

TEST(Vectorizer, BlendsChromaAtTheMeanWhereOneOfAPairIsAnEdge) {
  EdgeVideo video;
  video.draw_many(100, true);
  const PlaneLayout packed;
  // The edge is columns 7 and 8: the second of one pair and the first of the next.
  for (int p : {1, 2}) {
    EXPECT_EQ(video.frame().plane(p).row(4)[2], (128 * 48 + 40 * 16 + 32) >> 6);
    EXPECT_EQ(video.frame().plane(p).row(4)[3], (128 * 24 + 40 * 40 + 32) >> 6);
    EXPECT_EQ(video.frame().plane(p).row(4)[4], (128 * 24 + 40 * 40 + 32) >> 6);
    EXPECT_EQ(video.frame().plane(p).row(4)[5], (128 * 48 + 40 * 16 + 32) >> 6);
  }
}

// Two columns whose gradient is 5 * 26 = 130 and 5 * 25 = 125, the nearest to 128 on either side.
TEST(Vectorizer, TakesOnlyGradientsAbove128) {
  for (const int sum : {25, 26}) {
    const State state = new_state();
    PlanarFrame frame(kNoxFormatI420, 12, 12);
    int shown = 0;
    for (int i = 0; i < 100; ++i) {
      for (int p = 0; p < 3; ++p) frame.plane(p).fill(40);
      // One sample of weight 1 or 2 in the neighbourhood of (5, 5), its double in that of others.
      frame.plane(0).row(5)[4] = static_cast<std::uint8_t>(40 + sum / 2);
      frame.plane(0).row(4)[4] = static_cast<std::uint8_t>(40 + sum % 2);
      vectorizer_process(state.get(), &frame.get(), &frame.get());
      shown = frame.plane(0).row(5)[5] == 40 ? 1 : 0;
    }
    // s_x = 2 * (sum / 2) + sum % 2, s_y = sum % 2: 626 and 676 against 666.
    EXPECT_EQ(shown, sum == 26 ? 1 : 0) << sum;
  }
}

TEST(Vectorizer, KeepsNoMaskOfPastFrames) {
  EdgeVideo video;
  video.draw_many(120, true);
  const VectorizerState *state = video.state();
  EXPECT_EQ(state->width, 16);
  EXPECT_EQ(state->height, 16);
  ASSERT_EQ(state->ring_short->capacity, 100);
  ASSERT_EQ(state->ring_long->capacity, 500);
  EXPECT_EQ(state->ring_short->index, 20);
  EXPECT_EQ(state->ring_long->index, 120);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(state->ring_short->slots[i], nullptr);
  for (int i = 0; i < 500; ++i) EXPECT_EQ(state->ring_long->slots[i], nullptr);
}

TEST(Vectorizer, BeginsWithoutRings) {
  const State state = new_state();
  EXPECT_EQ(state->ring_short, nullptr);
  EXPECT_EQ(state->ring_long, nullptr);
  EXPECT_EQ(state->width, 0);
  EXPECT_EQ(state->height, 0);
  ASSERT_NE(state->element, nullptr);
  EXPECT_EQ(state->element->width, 3);
  EXPECT_EQ(state->element->height, 3);
  constexpr std::uint8_t kCross[3] = {0b010, 0b111, 0b010};
  for (std::size_t r = 0; r < 3; ++r) EXPECT_EQ(state->element->rows[16 * r], kCross[r]) << r;
}

TEST(Vectorizer, FrameWithoutPixelsDoesNothing) {
  EdgeVideo video;
  video.draw_many(100, true);
  auto *state = const_cast<VectorizerState *>(video.state());
  NoxVideoFrame empty{};
  empty.format = kNoxFormatI420;
  EXPECT_EQ(vectorizer_process(state, &empty, &empty), 1);
  EXPECT_TRUE(video.draw(true)) << "the history is kept";
}

TEST(Vectorizer, FreeAcceptsNull) {
  EXPECT_NO_FATAL_FAILURE(vectorizer_free(nullptr));
}

TEST(Vectorizer, TakesAnotherSizeOnEveryFrame) {
  Random random(79);
  const State state = new_state();
  PlainVectorizer plain;
  for (int i = 0; i < (quick() ? 20 : 300); ++i) {
    const PlaneLayout layout = {random.between(0, 5), random.between(0, 5), random.chance(0.5)};
    const std::int32_t width = random.between(1, 140), height = random.between(1, 60);
    PlanarFrame frame(kNoxFormatI420, width, height, layout);
    PlanarFrame expected(kNoxFormatI420, width, height, layout);
    frame.randomize(&random);
    expected.set_bytes(frame.bytes());
    plain.process(expected.get(), expected.get());
    vectorizer_process(state.get(), &frame.get(), &frame.get());
    ASSERT_EQ(frame.bytes(), expected.bytes()) << width << " by " << height;
  }
}

// The drawing of a picture into planes of another size is cut, or leaves the page white.
TEST(Vectorizer, DrawsIntoPlanesOfAnotherSize) {
  Random random(80);
  for (const auto &[width, height] : kSizes) {
    const State state = new_state();
    PlainVectorizer plain;
    PlanarFrame in(kNoxFormatI420, 33, 21), out(kNoxFormatI420, width, height);
    PlanarFrame expected(kNoxFormatI420, width, height);
    in.randomize(&random);
    plain.process(in.get(), expected.get());
    vectorizer_process(state.get(), &in.get(), &out.get());
    ASSERT_EQ(out.bytes(), expected.bytes()) << width << " by " << height;
  }
}

// Its planes' other rows are page.
TEST(Vectorizer, DrawsIntoARecordThatTellsLessHeightThanItsPlanesHave) {
  Random random(81);
  const State state = new_state();
  PlainVectorizer plain;
  PlanarFrame in(kNoxFormatI420, 33, 21), out(kNoxFormatI420, 33, 21);
  PlanarFrame expected(kNoxFormatI420, 33, 21);
  in.randomize(&random);
  NoxVideoFrame lower = out.get(), lower_expected = expected.get();
  lower.height = lower_expected.height = 14;
  plain.process(in.get(), lower_expected);
  vectorizer_process(state.get(), &in.get(), &lower);
  EXPECT_EQ(out.bytes(), expected.bytes());
}

}  // namespace
}  // namespace nox::test
