#include "scenes/pen_motion.h"

#include <cmath>

namespace nox::scenes {
namespace {

constexpr std::uint32_t kRound = 200;
constexpr std::uint32_t kGoneFrom = 180;
constexpr std::uint32_t kPressedFrom[] = {35, 115};
constexpr std::uint32_t kPressedFor = 50;

bool pressed_at(std::uint32_t index) {
  for (const std::uint32_t from : kPressedFrom) {
    if (index % kRound >= from && index % kRound < from + kPressedFor) return true;
  }
  return false;
}

class Curve {
 public:
  Curve(int width, int height)
      : width_(static_cast<float>(width)), height_(static_cast<float>(height)) {}

  Point at(float angle) const {
    return {width_ * (0.5F + 0.40F * std::sin(2 * angle + 0.4F)),
            height_ * (0.5F + 0.38F * std::sin(3 * angle))};
  }

  // The angle that lies so many pixels further along.
  float advanced(float angle, float pixels) const {
    constexpr float kStep = 1e-3F;
    for (float walked = 0; walked < pixels;) {
      const Point here = at(angle);
      const Point next = at(angle + kStep);
      const float step = std::hypot(next.x - here.x, next.y - here.y);
      if (walked + step >= pixels) return angle + kStep * (pixels - walked) / step;
      walked += step;
      angle += kStep;
    }
    return angle;
  }

 private:
  float width_, height_;
};

}  // namespace

PenMotion::PenMotion(int width, int height, float speed, float shutter, std::uint32_t frames)
    : width_(width), height_(height) {
  const Curve curve(width, height);
  const float step = speed * static_cast<float>(width) / 640.0F;
  float angle = 0;
  for (std::uint32_t i = 0; i < frames; ++i) {
    const float closes = curve.advanced(angle, step * shutter);
    strokes_.push_back({curve.at(angle), curve.at(closes), pressed_at(i)});
    angle = curve.advanced(angle, step);
  }
}

PenMoment PenMotion::at(std::uint32_t index) const {
  const PenStroke &stroke = strokes_.at(index);
  return {index % kRound < kGoneFrom,
          stroke,
          {(stroke.from.x + stroke.to.x) / 2 / static_cast<float>(width_),
           (stroke.from.y + stroke.to.y) / 2 / static_cast<float>(height_)}};
}

}  // namespace nox::scenes
