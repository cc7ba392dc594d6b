// Pens drawn into rooms are what their truth says they are.
#include "scenes/lit_scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <vector>

#include "pentracker/pen_tracker.h"
#include "scenes/lit_words.h"
#include "scenes/room.h"

namespace nox::scenes {
namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 360;
constexpr std::uint32_t kFrames = 200;

class Frame {
 public:
  Frame() { nox_video_frame_alloc(&frame_, kNoxFormatI420, kWidth, kHeight); }
  ~Frame() { nox_video_frame_free_planes(&frame_); }
  Frame(const Frame &) = delete;
  Frame &operator=(const Frame &) = delete;

  NoxVideoFrame *get() { return &frame_; }

  double mean(int plane) const {
    const int samples = frame_.plane_widths[plane] * frame_.plane_heights[plane];
    double sum = 0;
    for (int i = 0; i < samples; ++i) sum += frame_.planes[plane][i];
    return sum / samples;
  }

 private:
  NoxVideoFrame frame_{};
};

LitScene in_room(const std::string &name, const LitPen &pen) {
  const auto room = std::make_shared<Room>(name, kWidth, kHeight, pen.exposure, pen.range);
  return LitScene(kWidth, kHeight, pen, kFrames, [room](std::uint32_t index, NoxVideoFrame *frame) {
    room->render(index, frame);
  });
}

// What the tracker says of a slow pen is where it is, and whether it is pressed.
TEST(LitScene, ASlowBallIsWhereTheTruthSays) {
  const LitScene scene = in_room("lit", {PenKind::kBall, 2});
  PenTracker *tracker = pen_tracker_new();
  Frame frame;
  for (std::uint32_t i = 0; i < kFrames; ++i) {
    scene.render(i, 2, frame.get());
    const PenMoment truth = scene.truth(i);
    float x = 0;
    float y = 0;
    std::int32_t pressed = 0;
    const bool found = pen_tracker_process(tracker, frame.get(), nullptr, &x, &y, &pressed) != 0;
    ASSERT_EQ(found, truth.visible) << i;
    if (!found) continue;
    EXPECT_NEAR(1 - x - 0.5F / 448, truth.middle.x, 1.5F / kWidth) << i;
    EXPECT_NEAR(y + 0.5F / 252, truth.middle.y, 1.5F / kHeight) << i;
    EXPECT_EQ(pressed != 0, truth.stroke.pressed) << i;
  }
  pen_tracker_free(tracker);
}

// Where the path is bent, both ends of a step are nearer to each other than they are along it.
TEST(LitScene, ThePenGoesAtItsSpeed) {
  const LitScene scene = in_room("dim", {PenKind::kBare, 30, 0.8F});
  std::vector<float> steps;
  std::vector<float> strokes;
  for (std::uint32_t i = 1; i < kFrames; ++i) {
    const Point before = scene.truth(i - 1).stroke.from;
    const PenStroke now = scene.truth(i).stroke;
    steps.push_back(std::hypot(now.from.x - before.x, now.from.y - before.y));
    strokes.push_back(std::hypot(now.to.x - now.from.x, now.to.y - now.from.y));
  }
  std::sort(steps.begin(), steps.end());
  std::sort(strokes.begin(), strokes.end());
  EXPECT_NEAR(steps[kFrames / 2], 30, 0.5);
  EXPECT_LE(steps.back(), 30.5F);
  EXPECT_NEAR(strokes[kFrames / 2], 24, 0.5);
  EXPECT_LE(strokes.back(), 24.5F);
}

TEST(LitScene, StrongColoursAreFurtherFromGrey) {
  Frame plain;
  Frame vivid;
  in_room("red", {PenKind::kNone}).render(0, 0, plain.get());
  in_room("red", {PenKind::kNone, 2, 0, 1, Range::kStudio, 1.4F}).render(0, 0, vivid.get());
  EXPECT_EQ(vivid.mean(0), plain.mean(0));
  for (int plane : {1, 2}) {
    EXPECT_NEAR(vivid.mean(plane) - 128, 1.4 * (plain.mean(plane) - 128), 0.5) << plane;
  }
}

TEST(LitScene, ShorterExposuresAreDarker) {
  Frame bright;
  Frame dark;
  in_room("white", {PenKind::kNone}).render(0, 0, bright.get());
  in_room("white", {PenKind::kNone, 2, 0, 0.35F}).render(0, 0, dark.get());
  EXPECT_GT(bright.mean(0), 170);
  EXPECT_LT(dark.mean(0), 140);
}

// Light that was read is light that is written, up to rounding, and so is its exposure.
TEST(LitScene, SamplesSurviveLight) {
  for (const Range range : {Range::kStudio, Range::kFull}) {
    Frame frame;
    in_room("icons", {PenKind::kNone, 2, 0, 1, range}).render(0, 0, frame.get());
    const double before[] = {frame.mean(0), frame.mean(1), frame.mean(2)};
    expose(frame.get(), 1.0F, range);
    for (int plane = 0; plane < 3; ++plane) EXPECT_NEAR(frame.mean(plane), before[plane], 0.6);
  }
}

TEST(LitScene, AnAreaStaysInThePicture) {
  const Area area = around({-50, 10}, {700, 20}, 15, kWidth, kHeight);
  EXPECT_EQ(area.left, 0);
  EXPECT_EQ(area.top, 0);
  EXPECT_EQ(area.right, kWidth);
  EXPECT_EQ(area.bottom, 36);
}

TEST(LitWords, SayThePen) {
  const LitPen pen =
      parse_lit_pen({"pen=bare", "speed=30", "open=0.8", "exposure=0.35", "range=full"});
  EXPECT_EQ(pen.kind, PenKind::kBare);
  EXPECT_EQ(pen.speed, 30);
  EXPECT_EQ(pen.open, 0.8F);
  EXPECT_EQ(pen.exposure, 0.35F);
  EXPECT_EQ(pen.range, Range::kFull);
  for (const char *word : {"pen", "pen=bal", "speed=x", "speed=-1", "open=x", "colour=blue"}) {
    EXPECT_THROW(parse_lit_pen({word}), std::invalid_argument) << word;
  }
  EXPECT_THROW(Room("attic", kWidth, kHeight, 1, Range::kFull), std::invalid_argument);
}

}  // namespace
}  // namespace nox::scenes
