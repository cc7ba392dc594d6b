#include "pentracker/pen_pictures.h"

#include <algorithm>

namespace nox::test {

namespace {

std::int32_t clipped(double fraction, std::int32_t size) {
  return std::clamp(static_cast<std::int32_t>(fraction * size), 0, size);
}

}  // namespace

PenPicture::PenPicture(std::int32_t width, std::int32_t height, std::int32_t padding)
    : planes_{{width, height, width + padding},
              {(width + 1) / 2, (height + 1) / 2, (width + 1) / 2 + padding},
              {(width + 1) / 2, (height + 1) / 2, (width + 1) / 2 + padding}} {
  frame_.format = kNoxFormatI420;
  frame_.width = width;
  frame_.height = height;
  frame_.n_planes = 3;
  for (int p = 0; p < 3; ++p) {
    frame_.planes[p] = planes_[p].data();
    frame_.strides[p] = planes_[p].stride();
    frame_.plane_widths[p] = planes_[p].width();
    frame_.plane_heights[p] = planes_[p].height();
  }
  clear();
}

void PenPicture::clear() {
  planes_[0].fill(40);
  planes_[1].fill(128);
  planes_[2].fill(128);
}

void PenPicture::fill(int plane, Part part, std::uint8_t value) {
  GuardedPlane &target = planes_[plane];
  const std::int32_t left = clipped(part.left, target.width());
  const std::int32_t right = clipped(part.left + part.width, target.width());
  const std::int32_t bottom = clipped(part.top + part.height, target.height());
  for (std::int32_t y = clipped(part.top, target.height()); y < bottom; ++y) {
    std::fill(target.row(y) + left, target.row(y) + right, value);
  }
}

void PenPicture::draw_pen(double x, double y, double side, int region_plane) {
  const double region = side + 30.0;
  fill(region_plane, {x - region / 2 / 448, y - region / 2 / 252, region / 448, region / 252}, 230);
  fill(0, {x - side / 2 / 448, y - side / 2 / 252, side / 448, side / 252}, 250);
}

void PenPicture::add_noise(Random *random, std::int32_t strength) {
  for (GuardedPlane &plane : planes_) {
    for (std::int32_t y = 0; y < plane.height(); ++y) {
      for (std::uint8_t *sample = plane.row(y); sample < plane.row(y) + plane.width(); ++sample) {
        const std::int32_t noisy = *sample + random->between(-strength, strength);
        *sample = static_cast<std::uint8_t>(std::clamp(noisy, 0, 255));
      }
    }
  }
}

void PenPicture::fill_random(Random *random) {
  for (GuardedPlane &plane : planes_) random->fill(plane.data(), plane.size());
}

}  // namespace nox::test
