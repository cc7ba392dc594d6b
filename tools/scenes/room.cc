#include "scenes/room.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace nox::scenes {
namespace {

// Draws in pixels of a picture of 640 by 360, whatever the canvas; colours are light.
class Painter {
 public:
  explicit Painter(Canvas *canvas)
      : canvas_(canvas),
        x_(static_cast<float>(canvas->width()) / 640.0F),
        y_(static_cast<float>(canvas->height()) / 360.0F) {}

  void box(float left, float top, float right, float bottom, Color light) {
    canvas_->rectangle({left * x_, top * y_}, {right * x_, bottom * y_}, light);
  }
  void disc(float x, float y, float radius, Color light, float softness = 1.0F) {
    canvas_->disc({x * x_, y * y_}, radius * x_, light, softness * x_);
  }
  // A surface that a light from the left makes brighter there.
  void wall(Color left, Color right) {
    const int width = canvas_->width();
    for (int x = 0; x < width; ++x) {
      const float t = static_cast<float>(x) / static_cast<float>(width);
      const Color mixed{left.r + t * (right.r - left.r), left.g + t * (right.g - left.g),
                        left.b + t * (right.b - left.b)};
      canvas_->rectangle({static_cast<float>(x), 0},
                         {static_cast<float>(x + 1), static_cast<float>(canvas_->height())}, mixed);
    }
  }

 private:
  Canvas *canvas_;
  float x_, y_;
};

void furniture(Painter *paint, float light) {
  const auto of = [light](float r, float g, float b) {
    return Color{r * light, g * light, b * light};
  };
  paint->box(0, 280, 640, 360, of(0.28F, 0.18F, 0.10F));  // a table
  paint->box(60, 90, 150, 200, of(0.10F, 0.14F, 0.08F));  // a picture
  paint->box(470, 60, 600, 75, of(0.30F, 0.20F, 0.12F));  // a shelf
  paint->box(480, 25, 492, 60, of(0.35F, 0.05F, 0.05F));  // books on it
  paint->box(494, 20, 504, 60, of(0.05F, 0.08F, 0.30F));
  paint->box(506, 28, 520, 60, of(0.30F, 0.28F, 0.20F));
  paint->box(530, 30, 548, 60, of(0.05F, 0.18F, 0.08F));
  paint->box(180, 265, 230, 285, of(0.55F, 0.53F, 0.50F));  // paper
  paint->box(400, 240, 424, 285, of(0.30F, 0.03F, 0.03F));  // a red cup
}

void lamp(Painter *paint) {
  for (int ring = 8; ring > 0; --ring) {
    const float far = static_cast<float>(ring);
    const float light = 0.1F + 1.2F * std::exp(-0.45F * far);
    paint->disc(120, 70, 22 + 7 * far, {light, 0.8F * light, 0.5F * light}, 8);
  }
  paint->disc(120, 70, 22, {5, 4.5F, 3.5F}, 2);
}

void bottle(Painter *paint) {
  paint->box(300, 200, 330, 290, {0.02F, 0.06F, 0.03F});
  paint->disc(307, 220, 2, {3, 2.8F, 2.2F}, 1);
  paint->disc(309, 236, 1.2F, {2, 1.8F, 1.6F}, 1);
}

void dull_screen(Painter *paint) {
  paint->box(480, 150, 610, 240, {0.01F, 0.01F, 0.01F});
  paint->box(484, 154, 606, 236, {0.30F, 0.36F, 0.46F});
  paint->box(490, 160, 540, 200, {0.75F, 0.78F, 0.80F});  // a window on it
  paint->box(550, 165, 600, 230, {0.12F, 0.16F, 0.30F});
}

void icon_screen(Painter *paint) {
  paint->box(470, 140, 622, 246, {0.01F, 0.01F, 0.01F});
  paint->box(474, 144, 618, 242, {0.02F, 0.10F, 0.90F});
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      const float x = 486 + 32 * static_cast<float>(column);
      const float y = 154 + 30 * static_cast<float>(row);
      paint->box(x, y, x + 9, y + 9, {0.95F, 0.96F, 1.0F});
    }
  }
}

void dim_room(Painter *paint) {
  paint->wall({0.10F, 0.09F, 0.07F}, {0.03F, 0.03F, 0.03F});
  furniture(paint, 0.15F);
  lamp(paint);
  bottle(paint);
}

void draw_still(const std::string &name, Canvas *canvas) {
  Painter paint(canvas);
  if (name == "lit" || name == "red") {
    paint.wall({0.40F, 0.38F, 0.35F}, {0.22F, 0.21F, 0.20F});
    furniture(&paint, 0.9F);
  } else if (name == "white") {
    paint.wall({0.85F, 0.84F, 0.80F}, {0.62F, 0.62F, 0.60F});
    furniture(&paint, 1.2F);
  } else if (name == "dim") {
    dim_room(&paint);
    dull_screen(&paint);
  } else if (name == "icons") {
    dim_room(&paint);
    icon_screen(&paint);
  } else {
    throw std::invalid_argument("there is no room called " + name);
  }
}

// Somebody in red who sways, and a car that passes every ten seconds or so.
void draw_moving(std::uint32_t index, Canvas *canvas) {
  Painter paint(canvas);
  const float t = static_cast<float>(index) / 30.0F;
  const float sway = 320 + 40 * std::sin(0.8F * t);
  paint.box(sway - 45, 130, sway + 45, 280, {0.75F, 0.04F, 0.03F});
  paint.disc(sway, 100, 24, {0.45F, 0.28F, 0.20F});
  for (int button = 0; button < 4; ++button) {
    const float y = 145 + 30 * static_cast<float>(button);
    paint.disc(sway, y, 2.5F, {0.55F, 0.52F, 0.48F});
  }
  const float car = static_cast<float>(index % 300) * 3 - 120;
  paint.box(car, 305, car + 90, 340, {0.65F, 0.03F, 0.03F});
  paint.box(car + 20, 292, car + 70, 306, {0.10F, 0.12F, 0.14F});
  paint.disc(car + 80, 318, 3, {1.2F, 1.1F, 1.0F});
  paint.disc(car + 8, 320, 2, {1.5F, 0.2F, 0.15F});
}

void copy_planes(const NoxVideoFrame &from, NoxVideoFrame *to) {
  for (int p = 0; p < from.n_planes; ++p) {
    for (std::ptrdiff_t y = 0; y < from.plane_heights[p]; ++y) {
      std::copy_n(from.planes[p] + y * from.strides[p], from.plane_widths[p],
                  to->planes[p] + y * to->strides[p]);
    }
  }
}

}  // namespace

const std::vector<std::string> &room_names() {
  static const std::vector<std::string> names = {"lit", "white", "dim", "icons", "red"};
  return names;
}

Room::Room(const std::string &name, int width, int height, float exposure, Range range)
    : moves_(name == "red"), exposure_(exposure), range_(range), still_(width, height) {
  draw_still(name, &still_);
  still_.blur(0.8F);
  if (moves_) return;
  nox_video_frame_alloc(&picture_, kNoxFormatI420, width, height);
  still_.expose(exposure_);
  write_light(still_, whole(picture_), range_, &picture_);
}

Room::~Room() {
  nox_video_frame_free_planes(&picture_);
}

void Room::render(std::uint32_t index, NoxVideoFrame *frame) const {
  if (!moves_) {
    copy_planes(picture_, frame);
    return;
  }
  Canvas light = still_;
  draw_moving(index, &light);
  light.expose(exposure_);
  write_light(light, whole(*frame), range_, frame);
}

}  // namespace nox::scenes
