#include "scenes/light_pen.h"

#include <algorithm>
#include <cmath>

namespace nox::scenes {
namespace {

constexpr Color kBlue{0.02F, 0.08F, 1.0F};
constexpr Color kRed{1.0F, 0.03F, 0.04F};

// Radii are in pixels of a picture that is 640 wide, lights in units of saturation.
struct Shape {
  float core;         // radius of the white dot
  float core_light;   // white light there
  float body;         // radius of the diffuser
  float body_light;   // coloured light there
  float opacity;      // of the body
  float glow_light;   // coloured light at the body's border, which fades outwards
  float glow_length;  // over which it fades to 1/e
};

constexpr Shape kBallShape{4.5F, 4.0F, 12.0F, 1.6F, 0.9F, 0.5F, 3.0F};
constexpr Shape kBareShape{3.0F, 8.0F, 4.0F, 6.0F, 0.0F, 6.0F, 3.5F};
constexpr float kFaint = 0.002F;  // light that no sample shows

// 1 well inside of a radius, 0 well outside.
float inside(float radius, float distance) {
  return std::clamp(radius - distance + 0.5F, 0.0F, 1.0F);
}

struct Seen {
  float opacity;
  float white;
  float coloured;
};

// In pixels of the 640 wide picture from the pen's middle.
Seen seen_at(const Shape &shape, float distance) {
  const float body = inside(shape.body, distance);
  const float beyond = std::max(0.0F, distance - shape.body);
  const float glow = shape.glow_light * std::exp(-beyond / shape.glow_length);
  return {shape.opacity * body, shape.core_light * inside(shape.core, distance),
          shape.body_light * body + glow * (1.0F - body)};
}

float reach_of(const Shape &shape) {
  return shape.body + shape.glow_length * std::log(shape.glow_light / kFaint);
}

// The mean of what is seen at a pixel while the pen goes along the stroke.
Seen mean_at(const Shape &shape, Point pixel, const PenStroke &stroke, float scale) {
  const float dx = stroke.to.x - stroke.from.x;
  const float dy = stroke.to.y - stroke.from.y;
  const int steps = std::clamp(static_cast<int>(std::hypot(dx, dy) / scale), 1, 256);
  Seen sum{0, 0, 0};
  for (int i = 0; i < steps; ++i) {
    const float t = (static_cast<float>(i) + 0.5F) / static_cast<float>(steps);
    const Seen one = seen_at(
        shape,
        std::hypot(pixel.x - stroke.from.x - t * dx, pixel.y - stroke.from.y - t * dy) / scale);
    sum = {sum.opacity + one.opacity, sum.white + one.white, sum.coloured + one.coloured};
  }
  const float part = 1.0F / static_cast<float>(steps);
  return {sum.opacity * part, sum.white * part, sum.coloured * part};
}

Color lit(const Color &behind, const Seen &seen, const Color &colour, float exposure) {
  const auto channel = [&](float before, float of_colour) {
    return before * (1.0F - seen.opacity) + exposure * (seen.white + seen.coloured * of_colour);
  };
  return {channel(behind.r, colour.r), channel(behind.g, colour.g), channel(behind.b, colour.b)};
}

}  // namespace

void draw_pen(const LightPen &pen, const PenStroke &stroke, NoxVideoFrame *frame) {
  if (pen.kind == PenKind::kNone) return;
  const Shape &shape = pen.kind == PenKind::kBall ? kBallShape : kBareShape;
  const Area area =
      around(stroke.from, stroke.to, reach_of(shape) * pen.scale, frame->width, frame->height);
  if (area.right <= area.left || area.bottom <= area.top) return;
  Canvas light = read_light(*frame, area, pen.range);
  for (int y = 0; y < light.height(); ++y) {
    for (int x = 0; x < light.width(); ++x) {
      const Point pixel{static_cast<float>(area.left + x) + 0.5F,
                        static_cast<float>(area.top + y) + 0.5F};
      const Seen seen = mean_at(shape, pixel, stroke, pen.scale);
      light.mix(x, y, lit(light.pixel(x, y), seen, stroke.pressed ? kRed : kBlue, pen.exposure),
                1.0F);
    }
  }
  write_light(light, area, pen.range, frame);
}

}  // namespace nox::scenes
