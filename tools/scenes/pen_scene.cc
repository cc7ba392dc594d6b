#include "scenes/pen_scene.h"

#include <cmath>

#include "scenes/desk.h"

namespace nox::scenes {
namespace {

constexpr float kBlur = 0.8F;
constexpr float kNoise = 3.0F;
constexpr float kFramesPerSecond = 30.0F;
// Sizes are fractions of the width.
constexpr float kLight = 0.010F;
constexpr float kHalo = 0.026F;
constexpr Color kWhite{255, 255, 255};
constexpr Color kHoverHalo{20, 40, 255};
constexpr Color kPressedHalo{255, 20, 30};

// Rounds of 150 frames: hovering, pressed from 50 to 110, gone from 130 to 145. It comes back
// hovering, as a pen that is lifted and set down again does.
constexpr std::uint32_t kRound = 150;
constexpr std::uint32_t kPressFrom = 50;
constexpr std::uint32_t kPressTo = 110;
constexpr std::uint32_t kGoneFrom = 130;
constexpr std::uint32_t kGoneTo = 145;

}  // namespace

PenScene::PenScene(int width, int height)
    : desk_(width, height), canvas_(width, height), noise_(2) {
  draw_desk(&desk_);
}

PenTruth PenScene::truth(std::uint32_t index) {
  const float t = static_cast<float>(index) / kFramesPerSecond;
  const std::uint32_t phase = index % kRound;
  return {phase < kGoneFrom || phase >= kGoneTo,
          phase >= kPressFrom && phase < kPressTo,
          {0.53F + 0.20F * std::sin(0.9F * t), 0.48F + 0.26F * std::sin(1.3F * t + 0.6F)}};
}

void PenScene::draw(std::uint32_t index, const PenTruth &pen) {
  canvas_ = desk_;
  canvas_.expose(ambient_light(index));
  if (!pen.visible) return;
  const auto width = static_cast<float>(canvas_.width());
  const Point at{pen.at.x * width, pen.at.y * static_cast<float>(canvas_.height())};
  canvas_.disc(at, kHalo * width, pen.pressed ? kPressedHalo : kHoverHalo, 0.25F * kHalo * width);
  canvas_.disc(at, kLight * width, kWhite, 0.25F * kLight * width);
}

void PenScene::render(std::uint32_t index, NoxVideoFrame *frame) {
  draw(index);
  canvas_.blur(kBlur);
  canvas_.add_noise(noise_, index, kNoise);
  canvas_.write(frame);
}

}  // namespace nox::scenes
