// A pressed pen that a bad frame lost is found again, close to where it was and nowhere else.
#include "nox-visuals/steps/recovery.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <optional>

#include "scenes/light_pen.h"

namespace {

using nox::app::kRecoveryFrames;
using nox::app::Recovery;
using nox::app::Sighting;
using nox::scenes::LightPen;

constexpr int kWidth = 640;
constexpr int kHeight = 360;

// Where the pen is, in widths and heights from the top left; none: nowhere.
using Place = std::optional<nox::scenes::Point>;

class Picture {
 public:
  explicit Picture(const Place &pen, bool pressed = true) {
    nox_video_frame_alloc(&frame_, kNoxFormatI420, kWidth, kHeight);
    constexpr int kGrey[] = {60, 128, 128};
    for (int plane = 0; plane < 3; ++plane) {
      std::memset(frame_.planes[plane], kGrey[plane],
                  static_cast<std::size_t>(frame_.strides[plane] * frame_.plane_heights[plane]));
    }
    if (!pen) return;
    const nox::scenes::Point at{pen->x * kWidth, pen->y * kHeight};
    draw_pen(LightPen{}, {at, at, pressed}, &frame_);
  }
  ~Picture() { nox_video_frame_free_planes(&frame_); }
  Picture(const Picture &) = delete;
  Picture &operator=(const Picture &) = delete;

  const NoxVideoFrame &get() const { return frame_; }

 private:
  NoxVideoFrame frame_{};
};

// As the element says of a pen there.
Sighting sighting(float x, float y, bool pressed) {
  return {1 - x, y, pressed, false};
}

TEST(Recovery, FindsAPressedPenBesideItsLastPlace) {
  Recovery recovery;
  EXPECT_FALSE(recovery.looks());  // no pen has been there
  recovery.saw(sighting(0.5F, 0.5F, true));
  EXPECT_TRUE(recovery.looks());
  EXPECT_FALSE(recovery.look(Picture(std::nullopt).get()).has_value());
  const auto pen = recovery.look(Picture(Place{{0.55F, 0.5F}}).get());
  ASSERT_TRUE(pen.has_value());
  EXPECT_TRUE(pen->pressed);
  EXPECT_TRUE(pen->recovered);
  EXPECT_NEAR(pen->x, 0.45, 0.005);
  EXPECT_NEAR(pen->y, 0.5, 0.005);
}

// Whether a pen so far to the right of the last place is found in the frame `frames` after it.
bool found_at(float distance, int frames) {
  Recovery recovery;
  recovery.saw(sighting(0.2F, 0.7F, true));
  for (int i = 1; i < frames; ++i) recovery.look(Picture(std::nullopt).get());
  return recovery.look(Picture(Place{{0.2F + distance, 0.7F}}).get()).has_value();
}

TEST(Recovery, ReachesFurtherWithEachOfThreeFrames) {
  EXPECT_TRUE(found_at(0.11F, 1));
  EXPECT_FALSE(found_at(0.13F, 1));
  EXPECT_TRUE(found_at(0.23F, 2));
  EXPECT_FALSE(found_at(0.25F, 2));
  EXPECT_TRUE(found_at(0.35F, 3));
  EXPECT_FALSE(found_at(0.37F, 3));
  EXPECT_TRUE(found_at(0.35F, 5));
  EXPECT_FALSE(found_at(0.37F, 5));
}

TEST(Recovery, HeightsCountAsTheyAreSeen) {
  Recovery recovery;
  recovery.saw(sighting(0.5F, 0.3F, true));
  // 0.2 of the height is 0.1125 of the width.
  EXPECT_TRUE(recovery.look(Picture(Place{{0.5F, 0.5F}}).get()).has_value());
  recovery.saw(sighting(0.5F, 0.3F, true));
  EXPECT_FALSE(recovery.look(Picture(Place{{0.5F, 0.53F}}).get()).has_value());
}

TEST(Recovery, GivesUpAfterTenFrames) {
  Recovery recovery;
  recovery.saw(sighting(0.5F, 0.5F, true));
  for (int i = 0; i < kRecoveryFrames; ++i) {
    ASSERT_TRUE(recovery.looks());
    EXPECT_FALSE(recovery.look(Picture(std::nullopt).get()).has_value());
  }
  EXPECT_FALSE(recovery.looks());
  recovery.saw(sighting(0.5F, 0.5F, false));
  EXPECT_TRUE(recovery.looks());
  recovery.forget();
  EXPECT_FALSE(recovery.looks());
}

// Each recovered place is the last one for the next frame: the stroke goes on.
TEST(Recovery, FollowsTheStrokeThatItPickedUp) {
  Recovery recovery;
  recovery.saw(sighting(0.1F, 0.7F, true));
  for (int i = 0; i < 30; ++i) {
    const float x = 0.12F + 0.025F * static_cast<float>(i);
    const auto pen = recovery.look(Picture(Place{{x, 0.7F}}).get());
    ASSERT_TRUE(pen.has_value()) << i;
    EXPECT_NEAR(1 - pen->x, x, 0.006) << i;
  }
}

TEST(Recovery, AHoveringPenIsTheElements) {
  Recovery recovery;
  recovery.saw(sighting(0.5F, 0.5F, true));
  EXPECT_FALSE(recovery.look(Picture(Place{{0.5F, 0.5F}}, false).get()).has_value());
}

TEST(Recovery, ARedThingElsewhereIsNoPen) {
  Recovery recovery;
  recovery.saw(sighting(0.1F, 0.2F, true));
  for (int i = 0; i < kRecoveryFrames; ++i) {
    EXPECT_FALSE(recovery.look(Picture(Place{{0.8F, 0.8F}}).get()).has_value());
  }
}

}  // namespace
