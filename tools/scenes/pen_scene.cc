#include "scenes/pen_scene.h"

#include <cmath>
#include <numbers>

namespace nox::scenes {
namespace {

constexpr Color kDesk{120, 105, 90};
constexpr Color kDeskEdge{70, 60, 55};
constexpr Color kPaper{165, 165, 160};
constexpr Color kInk{60, 60, 70};
constexpr Color kRuler{140, 130, 60};
constexpr Color kLamp{255, 255, 250};
constexpr Color kCup{215, 20, 25};
constexpr Color kCloth{20, 30, 205};
constexpr Color kTip{255, 255, 255};
constexpr Color kHoverGlow{10, 20, 255};
constexpr Color kPressGlow{255, 15, 20};

constexpr float kBlur = 0.8F;
constexpr float kNoise = 4.0F;

// Sizes as fractions of the picture's height.
constexpr float kGlowRadius = 0.042F;
constexpr float kTipRadius = 0.011F;

// Frames of a round in which the pen is there, and in which it presses.
struct Span {
  std::uint32_t begin, end;
  bool holds(std::uint32_t frame) const { return frame >= begin && frame < end; }
};
constexpr Span kVisible[] = {{10, 160}, {185, 300}};
constexpr Span kPressed[] = {{45, 75}, {95, 130}, {205, 260}};

template <std::size_t N>
bool in_any(const Span (&spans)[N], std::uint32_t frame) {
  for (const Span &span : spans) {
    if (span.holds(frame)) return true;
  }
  return false;
}

}  // namespace

PenScene::PenScene(int width, int height) : canvas_(width, height), noise_(2) {}

Point PenScene::at(float x, float y) const {
  return {x * static_cast<float>(canvas_.width()), y * static_cast<float>(canvas_.height())};
}

PenState PenScene::pen(std::uint32_t index) const {
  const std::uint32_t frame = index % kRound;
  const float angle =
      2.0F * std::numbers::pi_v<float> * static_cast<float>(frame) / static_cast<float>(kRound);
  const Point tip = at(0.5F + 0.2F * std::sin(2.0F * angle), 0.52F + 0.3F * std::sin(3.0F * angle));
  return {in_any(kVisible, frame), in_any(kPressed, frame), tip};
}

void PenScene::draw_desk() {
  const auto height = static_cast<float>(canvas_.height());
  canvas_.fill(kDesk);
  canvas_.rectangle(at(0.0F, 0.93F), at(1.0F, 0.95F), kDeskEdge);
  canvas_.rectangle(at(0.32F, 0.2F), at(0.6F, 0.8F), kPaper);
  for (int line = 0; line < 9; ++line) {
    const float y = 0.27F + 0.05F * static_cast<float>(line);
    canvas_.rectangle(at(0.35F, y), at(0.57F - 0.02F * static_cast<float>(line % 3), y + 0.006F),
                      kInk);
  }
  canvas_.rectangle(at(0.62F, 0.86F), at(0.95F, 0.9F), kRuler);
  canvas_.disc(at(0.12F, 0.14F), 0.09F * height, kLamp, 6.0F);
  canvas_.disc(at(0.87F, 0.25F), 0.1F * height, kCup, 2.0F);
  canvas_.rectangle(at(0.02F, 0.55F), at(0.2F, 0.88F), kCloth);
}

void PenScene::draw_pen(const PenState &pen) {
  const auto height = static_cast<float>(canvas_.height());
  canvas_.disc(pen.tip, kGlowRadius * height, pen.pressed ? kPressGlow : kHoverGlow,
               0.3F * kGlowRadius * height);
  canvas_.disc(pen.tip, kTipRadius * height, kTip, 1.5F);
}

void PenScene::render(std::uint32_t index, NoxVideoFrame *frame) {
  const auto t = static_cast<float>(index) / 30.0F;  // seconds
  draw_desk();
  const PenState state = pen(index);
  if (state.visible) draw_pen(state);
  canvas_.blur(kBlur);
  canvas_.expose(0.94F + 0.05F * std::sin(0.4F * t));
  canvas_.add_noise(noise_, index, kNoise);
  canvas_.write(frame);
}

}  // namespace nox::scenes
