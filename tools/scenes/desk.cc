#include "scenes/desk.h"

#include <cmath>

namespace nox::scenes {
namespace {

// A rectangle whose corners are fractions of the canvas.
void part(Canvas *canvas, Point top_left, Point bottom_right, Color color) {
  const auto width = static_cast<float>(canvas->width());
  const auto height = static_cast<float>(canvas->height());
  canvas->rectangle({top_left.x * width, top_left.y * height},
                    {bottom_right.x * width, bottom_right.y * height}, color);
}

void draw_lamp(Canvas *canvas) {
  const auto width = static_cast<float>(canvas->width());
  const Point centre{0.12F * width, 0.17F * static_cast<float>(canvas->height())};
  canvas->disc(centre, 0.11F * width, {165, 155, 135}, 0.06F * width);
  canvas->disc(centre, 0.055F * width, {255, 252, 240}, 0.01F * width);
}

void draw_cup(Canvas *canvas) {
  part(canvas, {0.84F, 0.62F}, {0.95F, 0.92F}, {190, 25, 25});
  part(canvas, {0.95F, 0.68F}, {0.975F, 0.82F}, {150, 18, 20});
  part(canvas, {0.84F, 0.62F}, {0.95F, 0.65F}, {120, 12, 14});
}

}  // namespace

void draw_desk(Canvas *canvas) {
  canvas->fill({104, 84, 66});
  part(canvas, {0.0F, 0.0F}, {1.0F, 0.08F}, {62, 60, 64});        // the wall behind
  part(canvas, {0.0F, 0.08F}, {1.0F, 0.10F}, {38, 34, 32});       // the desk's far edge
  part(canvas, {0.30F, 0.18F}, {0.52F, 0.46F}, {150, 146, 138});  // two sheets of paper
  part(canvas, {0.56F, 0.24F}, {0.76F, 0.52F}, {132, 130, 126});
  part(canvas, {0.34F, 0.82F}, {0.66F, 0.84F}, {34, 60, 40});  // pencils
  part(canvas, {0.36F, 0.88F}, {0.62F, 0.895F}, {140, 110, 30});
  part(canvas, {0.02F, 0.68F}, {0.20F, 0.96F}, {28, 42, 190});  // a blue cloth
  draw_cup(canvas);
  draw_lamp(canvas);
}

float ambient_light(std::uint32_t index) {
  return 0.94F + 0.06F * std::sin(static_cast<float>(index) / 30.0F * 0.7F);
}

}  // namespace nox::scenes
