#include "pentracker/dotted_picture.h"

#include <algorithm>
#include <cstddef>

namespace nox::test {

namespace {

constexpr std::uint8_t kBright = 255;

// A number that looks random, the same for the same place and use.
std::uint32_t chance_of(std::uint32_t seed, std::int32_t column, std::int32_t row,
                        std::int32_t use) {
  std::uint32_t mixed = seed;
  for (const std::int32_t value : {column, row, use}) {
    mixed = (mixed ^ static_cast<std::uint32_t>(value)) * 0x9E3779B1U;
    mixed ^= mixed >> 15;
    mixed *= 0x85EBCA77U;
    mixed ^= mixed >> 13;
  }
  return mixed;
}

class Drawing {
 public:
  Drawing(const DottedPicture &dots, std::int32_t index, NoxVideoFrame *frame)
      : dots_(dots), index_(index), frame_(frame) {}

  void draw_luma() {
    blacken(0);
    const std::int32_t columns = width(0) / dots_.pitch_x + 2;
    const std::int32_t rows = height(0) / dots_.pitch_y + 2;
    for (std::int32_t row = -1; row < rows; ++row) {
      for (std::int32_t column = -1; column < columns; ++column) draw_dot(column, row);
    }
  }

  void draw_chroma(std::int32_t plane) {
    blacken(plane);
    if ((dots_.colours & plane) == 0) return;
    if (dots_.region_pitch == 0) {
      fill(plane, 0, 0, width(plane), height(plane));
      return;
    }
    const std::int32_t pitch = dots_.region_pitch;
    const std::int32_t shift = dots_.region_shift_x * index_ % pitch;
    for (std::int32_t y = pitch / 2; y < height(plane); y += pitch) {
      for (std::int32_t x = shift - pitch; x < width(plane) + pitch; x += pitch) {
        fill(plane, x, y, dots_.region_side, dots_.region_side);
      }
    }
  }

 private:
  std::int32_t width(std::int32_t plane) const { return frame_->plane_widths[plane]; }
  std::int32_t height(std::int32_t plane) const { return frame_->plane_heights[plane]; }

  std::uint8_t *row(std::int32_t plane, std::int32_t y) {
    return frame_->planes[plane] + static_cast<std::ptrdiff_t>(y) * frame_->strides[plane];
  }

  void blacken(std::int32_t plane) {
    for (std::int32_t y = 0; y < height(plane); ++y) {
      std::fill_n(row(plane, y), width(plane), std::uint8_t{0});
    }
  }

  void fill(std::int32_t plane, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) {
    const std::int32_t left = std::clamp(x, 0, width(plane));
    const std::int32_t right = std::clamp(x + w, left, width(plane));
    for (std::int32_t r = std::max(y, 0); r < std::min(y + h, height(plane)); ++r) {
      std::fill(row(plane, r) + left, row(plane, r) + right, kBright);
    }
  }

  // 0 to most, for one dot in one frame.
  std::int32_t up_to(std::int32_t most, std::int32_t column, std::int32_t row, std::int32_t use) {
    const std::uint32_t value = chance_of(dots_.seed, column, row, 8 * index_ + use);
    return static_cast<std::int32_t>(value % static_cast<std::uint32_t>(most + 1));
  }

  void draw_dot(std::int32_t column, std::int32_t row) {
    constexpr std::int32_t kAllFrames = -1;
    if (chance_of(dots_.seed, column, row, kAllFrames) % 100 <
        static_cast<std::uint32_t>(dots_.left_out)) {
      return;
    }
    if (up_to(99, column, row, 0) < dots_.churn) return;
    const std::int32_t x = column * dots_.pitch_x + (row % 2 == 0 ? 0 : dots_.stagger) +
                           dots_.shift_x * index_ % dots_.pitch_x +
                           up_to(dots_.jitter, column, row, 1);
    const std::int32_t y = row * dots_.pitch_y + dots_.shift_y * index_ % dots_.pitch_y +
                           up_to(dots_.jitter, column, row, 2);
    fill(0, x, y, dots_.dot_width + up_to(dots_.growth, column, row, 3),
         dots_.dot_height + up_to(dots_.growth, column, row, 4));
  }

  const DottedPicture &dots_;
  std::int32_t index_;
  NoxVideoFrame *frame_;
};

}  // namespace

void draw_dots(const DottedPicture &dots, std::int32_t index, NoxVideoFrame *frame) {
  Drawing drawing(dots, index, frame);
  drawing.draw_luma();
  for (const std::int32_t plane : {1, 2}) drawing.draw_chroma(plane);
}

}  // namespace nox::test
