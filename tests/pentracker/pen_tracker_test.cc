#include "pentracker/pen_tracker.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>

#include "masks/known_shapes.h"
#include "masks/morphology_shapes.h"
#include "pentracker/blob_compare.h"
#include "pentracker/pen_pictures.h"
#include "pentracker/pen_tracker_plain.h"
#include "support/quick.h"
#include "support/random.h"

namespace {

using nox::test::Part;
using nox::test::PenPicture;
using nox::test::PenPosition;
using nox::test::PlainPenTracker;
using nox::test::Random;

constexpr int kHover = 1;
constexpr int kPress = 2;

struct TrackerDeleter {
  void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
};
using TrackerPtr = std::unique_ptr<PenTracker, TrackerDeleter>;

TrackerPtr make_tracker() {
  return TrackerPtr(pen_tracker_new());
}

// Outputs that no pen has: they stay when none is found.
constexpr float kUntouched = -7.0F;
constexpr std::int32_t kUntouchedPressed = 99;

PenPosition process(PenTracker *tracker, const NoxVideoFrame &frame) {
  PenPosition result{0, kUntouched, kUntouched, kUntouchedPressed};
  NoxVideoFrame output = frame;
  result.found =
      pen_tracker_process(tracker, &frame, &output, &result.x, &result.y, &result.pressed);
  return result;
}

// The tracker and its plain reference, fed with the same pictures.
class Pair {
 public:
  void expect_same(const PenPicture &picture) {
    const PenPosition actual = process(tracker_.get(), picture.frame());
    const PenPosition expected = plain_.process(picture.frame());
    ASSERT_EQ(actual.found, expected.found);
    if (actual.found != 0) {
      ++found_;
      EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.x), std::bit_cast<std::uint32_t>(expected.x));
      EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.y), std::bit_cast<std::uint32_t>(expected.y));
      EXPECT_EQ(actual.pressed, expected.pressed);
    } else {
      EXPECT_EQ(actual.x, kUntouched);
      EXPECT_EQ(actual.y, kUntouched);
      EXPECT_EQ(actual.pressed, kUntouchedPressed);
    }
    ASSERT_EQ(nox::test::blob_differences(tracker_->u_blobs, plain_.u), "");
    ASSERT_EQ(nox::test::blob_differences(tracker_->v_blobs, plain_.v), "");
    ASSERT_EQ(nox::test::blob_differences(tracker_->luma_blobs, plain_.luma), "");
  }
  int found() const { return found_; }

 private:
  TrackerPtr tracker_ = make_tracker();
  PlainPenTracker plain_;
  int found_ = 0;
};

// A pen on its way, pressed now and then and sometimes gone, among spots and regions that are none.
void draw_scene(PenPicture *picture, int frame, Random *random) {
  picture->clear();
  picture->fill(kHover, {0.02, 0.5, 0.2, 0.45}, 200);
  picture->fill(kPress, {0.75, 0.05, 0.2, 0.3}, 200);
  picture->fill(0, {0.05, 0.6, 0.01, 0.02}, 240);  // a still spot in the blue region
  picture->fill(0, {0.8, 0.1, 0.12, 0.1}, 255);    // a lamp: too large
  picture->fill(0, {0.5, 0.9, 0.01, 0.02}, 255);   // a spot in no region
  if (frame % 23 >= 3) {
    const double t = frame * 0.11;
    picture->draw_pen(0.5 + 0.3 * std::cos(t), 0.5 + 0.3 * std::sin(1.3 * t), 6,
                      frame % 10 < 6 ? kHover : kPress);
  }
  picture->add_noise(random, 12);
}

struct Area {
  std::int32_t width, height;
};

class EverySize : public testing::TestWithParam<Area> {};

TEST_P(EverySize, MatchesThePlainReference) {
  const Area area = GetParam();
  Random random(static_cast<std::uint64_t>(area.width) * 10000 +
                static_cast<std::uint64_t>(area.height));
  Pair pair;
  PenPicture picture(area.width, area.height, area.width % 7);
  // Scores of history come after 30 frames; the plain way takes its time over large pictures.
  const bool large = area.width > 500;
  const int frames = nox::test::quick() ? 4 : large ? 12 : 36;
  for (int frame = 0; frame < frames; ++frame) {
    draw_scene(&picture, frame, &random);
    ASSERT_NO_FATAL_FAILURE(pair.expect_same(picture)) << "frame " << frame;
  }
  const bool shows_a_pen = area.width >= 100 && frames > 10;
  EXPECT_GE(pair.found(), shows_a_pen ? 5 : 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, EverySize,
                         testing::Values(Area{1, 1}, Area{2, 2}, Area{1, 8}, Area{8, 1}, Area{3, 5},
                                         Area{7, 2}, Area{33, 17}, Area{100, 400}, Area{448, 252},
                                         Area{449, 253}, Area{640, 480}, Area{896, 504},
                                         Area{1281, 721}),
                         [](const auto &area) {
                           return std::to_string(area.param.width) + "x" +
                                  std::to_string(area.param.height);
                         });

TEST(PenTracker, SizeChangesInMidStreamMatchThePlainReference) {
  constexpr Area kSizes[] = {{448, 252}, {320, 240}, {1, 1},  {0, 0},   {640, 360},
                             {1, 30},    {448, 252}, {30, 1}, {96, 54}, {897, 505}};
  Random random(11);
  Pair pair;
  const int frames = nox::test::quick() ? 10 : 40;
  for (int frame = 0; frame < frames; ++frame) {
    const Area area = kSizes[(frame / 4) % std::size(kSizes)];
    PenPicture picture(area.width, area.height, frame % 3);
    draw_scene(&picture, frame, &random);
    ASSERT_NO_FATAL_FAILURE(pair.expect_same(picture)) << "frame " << frame;
  }
}

TEST(PenTracker, ChangesOfOneSideAloneMatchThePlainReference) {
  Random random(14);
  Pair pair;
  for (const Area area : {Area{320, 240}, {320, 180}, {320, 240}, {200, 240}, {320, 240}}) {
    PenPicture picture(area.width, area.height);
    draw_scene(&picture, 3, &random);
    ASSERT_NO_FATAL_FAILURE(pair.expect_same(picture)) << area.width << " by " << area.height;
  }
  EXPECT_GE(pair.found(), 1);
}

TEST(PenTracker, RandomPicturesMatchThePlainReference) {
  Random random(12);
  for (const Area area : {Area{448, 252}, {64, 36}, {20, 12}, {897, 505}}) {
    Pair pair;
    PenPicture picture(area.width, area.height);
    for (int frame = 0; frame < (nox::test::quick() ? 2 : 5); ++frame) {
      picture.fill_random(&random);
      ASSERT_NO_FATAL_FAILURE(pair.expect_same(picture)) << "frame " << frame;
    }
  }
}

TEST(PenTracker, AFirstPictureOfNoSizeFindsNothing) {
  const TrackerPtr tracker = make_tracker();
  const NoxVideoFrame nothing{};
  EXPECT_EQ(process(tracker.get(), nothing).found, 0);
}

TEST(PenTracker, AHoveringPenIsFoundAtOnceWithoutHistory) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  picture.draw_pen(0.5, 0.5, 6, kHover);
  const PenPosition position = process(tracker.get(), picture.frame());
  ASSERT_NE(position.found, 0);
  EXPECT_EQ(position.pressed, 0);
  const Blob *pen = tracker->pen;
  EXPECT_EQ(position.x, (447.0F - pen->centre_x) / 448.0F);
  EXPECT_EQ(position.y, pen->centre_y / 252.0F);
  EXPECT_EQ(blob_history_score(pen), 0.0F);
}

TEST(PenTracker, AFirstSightInARedRegionAloneIsNotFound) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  picture.draw_pen(0.5, 0.5, 6, kPress);
  for (int frame = 0; frame < 40; ++frame) {
    EXPECT_EQ(process(tracker.get(), picture.frame()).found, 0) << "frame " << frame;
  }
}

TEST(PenTracker, AHoveringPenCanBecomePressedAndHoverAgain) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  for (int frame = 0; frame < 12; ++frame) {
    const bool press = frame >= 4 && frame < 8;
    picture.clear();
    picture.draw_pen(0.5, 0.5, 6, press ? kPress : kHover);
    const PenPosition position = process(tracker.get(), picture.frame());
    ASSERT_NE(position.found, 0) << "frame " << frame;
    EXPECT_EQ(position.pressed, press ? 1 : 0) << "frame " << frame;
  }
}

TEST(PenTracker, OfRegionsWithEqualScoresHoverWins) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  picture.draw_pen(0.5, 0.5, 6, kHover);
  picture.draw_pen(0.5, 0.5, 6, kPress);
  for (int frame = 0; frame < 40; ++frame) {
    const PenPosition position = process(tracker.get(), picture.frame());
    ASSERT_NE(position.found, 0);
    EXPECT_EQ(position.pressed, 0);
  }
}

TEST(PenTracker, ASpotOf31WorkPixelsIsNoCandidate) {
  // The spot grows by one pixel on every side before it is measured.
  for (const auto &[side, found] : {std::pair{28, true}, {29, false}}) {
    const TrackerPtr tracker = make_tracker();
    PenPicture picture(448, 252);
    picture.fill(kHover, {0.2, 0.2, 0.6, 0.6}, 230);
    picture.fill(0, {200.5 / 448, 100.5 / 252, side / 448.0, side / 252.0}, 250);
    EXPECT_EQ(process(tracker.get(), picture.frame()).found != 0, found) << side;
  }
}

TEST(PenTracker, ASpotAtWorkColumnZeroIsAtTheFarEnd) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  picture.fill(kHover, {0, 0, 0.2, 0.4}, 230);
  picture.row(0, 50)[0] = 250;  // grows to columns 0 and 1
  const PenPosition position = process(tracker.get(), picture.frame());
  ASSERT_NE(position.found, 0);
  EXPECT_EQ(position.x, (447.0F - 0.5F) / 448.0F);
  EXPECT_EQ(position.y, 50.0F / 252.0F);
}

TEST(PenTracker, AFollowedPenThatLeavesEveryRegionIsLostAndNotReplaced) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  const Part spot{0.5, 0.5, 6.0 / 448, 6.0 / 252};
  const Part other{0.25, 0.5, 6.0 / 448, 6.0 / 252};
  const Part region{0.4, 0.35, 0.3, 0.3};
  const Part left_region{0.15, 0.35, 0.2, 0.3};
  picture.fill(kHover, region, 230);
  picture.fill(0, spot, 250);
  ASSERT_NE(process(tracker.get(), picture.frame()).found, 0);
  // The spot now lies in a red region, followed from the blue one, and another pen appears.
  picture.clear();
  picture.fill(kPress, region, 230);
  picture.fill(kHover, left_region, 230);
  picture.fill(0, spot, 250);
  picture.fill(0, other, 250);
  const PenPosition followed = process(tracker.get(), picture.frame());
  ASSERT_NE(followed.found, 0);
  EXPECT_EQ(followed.pressed, 1);
  EXPECT_GT(tracker->pen->centre_x, 200.0F);
}

// The regions of the two spots would choose the other way: the older spot's is young, and the
// younger spot's is old.
TEST(PenTracker, OfTwoSpotsTheOlderIsWeighedAndTheYoungerBehindItIsNot) {
  const TrackerPtr tracker = make_tracker();
  PenPicture picture(448, 252);
  const Part upper_region{0.1, 0.1, 0.3, 0.3}, lower_region{0.6, 0.6, 0.3, 0.3};
  const Part upper_spot{0.2, 0.2, 6.0 / 448, 6.0 / 252};
  const Part lower_spot{0.7, 0.7, 6.0 / 448, 6.0 / 252};
  picture.fill(kPress, upper_region, 230);  // no pen yet, so that nothing is found in it
  picture.fill(kHover, lower_region, 230);
  picture.fill(0, upper_spot, 250);
  for (int frame = 0; frame < 35; ++frame) {
    ASSERT_EQ(process(tracker.get(), picture.frame()).found, 0) << "frame " << frame;
  }
  picture.fill(kHover, upper_region, 230);
  picture.fill(0, lower_spot, 250);
  const PenPosition position = process(tracker.get(), picture.frame());
  ASSERT_NE(position.found, 0);
  EXPECT_EQ(blob_list_count(tracker->luma_blobs), 2);
  EXPECT_LT(tracker->pen->centre_y, 126.0F);
}

// Elements of any other shape are dilated with too, but far more slowly.
TEST(PenTracker, GrowsByShapesThatHaveKernelsOfTheirOwn) {
  const TrackerPtr tracker = make_tracker();
  using nox::masks::find_known_shape;
  const nox::masks::KnownShape *square = find_known_shape(*tracker->luma_growth);
  const nox::masks::KnownShape *disc = find_known_shape(*tracker->chroma_growth);
  ASSERT_NE(square, nullptr);
  ASSERT_NE(disc, nullptr);
  EXPECT_EQ(square->dilate, nox::masks::dilate_box3);
  EXPECT_EQ(disc->dilate, nox::masks::dilate_disc15);
}

TEST(PenTracker, KeepsItsPromisesAboutTheRecord) {
  const TrackerPtr tracker = make_tracker();
  EXPECT_EQ(tracker->work_width, 448);
  EXPECT_EQ(tracker->work_height, 252);
  EXPECT_EQ(tracker->last_width, 0);
  EXPECT_EQ(tracker->last_height, 0);
  EXPECT_EQ(tracker->pen, nullptr);
  const PenPicture picture(64, 48);
  process(tracker.get(), picture.frame());
  EXPECT_EQ(tracker->last_width, 64);
  EXPECT_EQ(tracker->last_height, 48);
  pen_tracker_free(nullptr);
}

TEST(PenFilters, BoundsAreThoseOfTheBoundingBox) {
  const TrackerPtr tracker = make_tracker();
  Blob blob{};
  blob.width = 5;
  blob.height = 5;
  EXPECT_NE(chroma_blob_filter(&blob, tracker.get()), 0);
  blob.width = 4;
  EXPECT_EQ(chroma_blob_filter(&blob, tracker.get()), 0);
  blob.width = 5;
  blob.height = 4;
  EXPECT_EQ(chroma_blob_filter(&blob, tracker.get()), 0);
  // In no region, since nothing was labelled.
  EXPECT_EQ(luma_blob_filter(&blob, tracker.get()), 0);
}

}  // namespace
