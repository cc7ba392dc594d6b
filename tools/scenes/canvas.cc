#include "scenes/canvas.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace nox::scenes {
namespace {

constexpr std::size_t kNoiseSamples = 1 << 20;

Color operator+(Color a, Color b) {
  return {a.r + b.r, a.g + b.g, a.b + b.b};
}
Color operator*(Color a, float f) {
  return {a.r * f, a.g * f, a.b * f};
}

std::uint8_t to_sample(float value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

// ITU-R BT.601 with studio range, from gamma-coded R'G'B' of 0 to 255.
float luma(Color c) {
  return 16.0F + (65.481F * c.r + 128.553F * c.g + 24.966F * c.b) / 255.0F;
}
float chroma_blue(Color c) {
  return 128.0F + (-37.797F * c.r - 74.203F * c.g + 112.0F * c.b) / 255.0F;
}
float chroma_red(Color c) {
  return 128.0F + (112.0F * c.r - 93.786F * c.g - 18.214F * c.b) / 255.0F;
}

// How much of the unit interval from `i` lies between `low` and `high`.
float overlap(int i, float low, float high) {
  const auto start = static_cast<float>(i);
  return std::clamp(std::min(high, start + 1.0F) - std::max(low, start), 0.0F, 1.0F);
}

float distance_to_segment(Point point, Point from, Point to) {
  const Point along{to.x - from.x, to.y - from.y};
  const Point offset{point.x - from.x, point.y - from.y};
  const float length = along.x * along.x + along.y * along.y;
  const float dot = offset.x * along.x + offset.y * along.y;
  const float t = length > 0.0F ? std::clamp(dot / length, 0.0F, 1.0F) : 0.0F;
  return std::hypot(offset.x - t * along.x, offset.y - t * along.y);
}

std::vector<float> gaussian_weights(float sigma) {
  const int radius = std::max(1, static_cast<int>(std::ceil(3.0F * sigma)));
  std::vector<float> weights;
  float sum = 0.0F;
  for (int i = -radius; i <= radius; ++i) {
    const float x = static_cast<float>(i) / sigma;
    weights.push_back(std::exp(-0.5F * x * x));
    sum += weights.back();
  }
  for (float &weight : weights) weight /= sum;
  return weights;
}

// row += weight * other, pixel by pixel.
void add_row(Color *row, const Color *other, std::size_t count, float weight) {
  for (std::size_t i = 0; i < count; ++i) row[i] = row[i] + other[i] * weight;
}

}  // namespace

NoiseField::NoiseField(std::uint32_t seed) : samples_(kNoiseSamples) {
  std::mt19937 engine(seed);
  std::normal_distribution<float> normal;
  for (float &sample : samples_) sample = normal(engine);
}

const float *NoiseField::row(std::uint32_t frame, std::uint32_t row, std::size_t count) const {
  // A multiplicative hash of (frame, row) picks the place.
  const std::uint32_t place = (frame * 2654435761U + row * 2246822519U) >> 7;
  return samples_.data() + place % (kNoiseSamples - std::min(count, kNoiseSamples - 1));
}

Canvas::Canvas(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

void Canvas::fill(Color color) {
  std::fill(pixels_.begin(), pixels_.end(), color);
}

void Canvas::mix(int x, int y, Color color, float coverage) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
  Color &pixel = at(x, y);
  pixel = pixel * (1.0F - coverage) + color * coverage;
}

void Canvas::rectangle(Point top_left, Point bottom_right, Color color) {
  const int right = static_cast<int>(std::ceil(bottom_right.x));
  const int bottom = static_cast<int>(std::ceil(bottom_right.y));
  for (int y = static_cast<int>(std::floor(top_left.y)); y < bottom; ++y) {
    const float rows = overlap(y, top_left.y, bottom_right.y);
    for (int x = static_cast<int>(std::floor(top_left.x)); x < right; ++x) {
      mix(x, y, color, rows * overlap(x, top_left.x, bottom_right.x));
    }
  }
}

void Canvas::disc(Point centre, float radius, Color color, float softness) {
  stroke(centre, centre, radius, color, softness);
}

void Canvas::line(Point from, Point to, float radius, Color color) {
  stroke(from, to, radius, color, 1.0F);
}

// All pixels by their distance from the segment.
void Canvas::stroke(Point from, Point to, float radius, Color color, float softness) {
  const float reach = radius + softness;
  const auto [left, right] = std::minmax(from.x, to.x);
  const auto [top, bottom] = std::minmax(from.y, to.y);
  for (int y = static_cast<int>(top - reach); y <= static_cast<int>(bottom + reach); ++y) {
    for (int x = static_cast<int>(left - reach); x <= static_cast<int>(right + reach); ++x) {
      const Point pixel{static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
      const float distance = distance_to_segment(pixel, from, to);
      mix(x, y, color, std::clamp((radius - distance) / softness + 0.5F, 0.0F, 1.0F));
    }
  }
}

// Along the rows and then down the columns, whole rows at a time; borders repeat.
void Canvas::blur(float sigma) {
  const std::vector<float> weights = gaussian_weights(sigma);
  const int radius = static_cast<int>(weights.size() / 2);
  const auto width = static_cast<std::size_t>(width_);
  std::vector<Color> along(pixels_.size());
  std::vector<Color> padded(width + 2 * static_cast<std::size_t>(radius));
  for (int y = 0; y < height_; ++y) {
    for (int x = -radius; x < width_ + radius; ++x) {
      padded[static_cast<std::size_t>(x + radius)] = at(std::clamp(x, 0, width_ - 1), y);
    }
    Color *row = along.data() + static_cast<std::size_t>(y) * width;
    for (std::size_t k = 0; k < weights.size(); ++k) add_row(row, &padded[k], width, weights[k]);
  }
  std::fill(pixels_.begin(), pixels_.end(), Color{0, 0, 0});
  for (int y = 0; y < height_; ++y) {
    for (int k = -radius; k <= radius; ++k) {
      const auto from = static_cast<std::size_t>(std::clamp(y + k, 0, height_ - 1));
      add_row(&at(0, y), along.data() + from * width, width,
              weights[static_cast<std::size_t>(k + radius)]);
    }
  }
}

void Canvas::expose(float gain) {
  for (Color &pixel : pixels_) pixel = pixel * gain;
}

void Canvas::add_noise(const NoiseField &noise, std::uint32_t frame, float sigma) {
  const std::size_t count = 3 * static_cast<std::size_t>(width_);
  for (int y = 0; y < height_; ++y) {
    const float *sample = noise.row(frame, static_cast<std::uint32_t>(y), count);
    for (int x = 0; x < width_; ++x, sample += 3) {
      Color &pixel = at(x, y);
      pixel = pixel + Color{sample[0], sample[1], sample[2]} * sigma;
    }
  }
}

void Canvas::write(NoxVideoFrame *frame) const {
  write_luma(frame);
  write_chroma(frame);
}

void Canvas::write_luma(NoxVideoFrame *frame) const {
  for (int y = 0; y < height_; ++y) {
    std::uint8_t *row = frame->planes[0] + static_cast<std::ptrdiff_t>(y) * frame->strides[0];
    for (int x = 0; x < width_; ++x) row[x] = to_sample(luma(pixel(x, y)));
  }
}

void Canvas::write_chroma(NoxVideoFrame *frame) const {
  for (int y = 0; y < frame->plane_heights[1]; ++y) {
    std::uint8_t *u = frame->planes[1] + static_cast<std::ptrdiff_t>(y) * frame->strides[1];
    std::uint8_t *v = frame->planes[2] + static_cast<std::ptrdiff_t>(y) * frame->strides[2];
    for (int x = 0; x < frame->plane_widths[1]; ++x) {
      const Color mean = block_mean(2 * x, 2 * y);
      u[x] = to_sample(chroma_blue(mean));
      v[x] = to_sample(chroma_red(mean));
    }
  }
}

// The mean of the two by two pixels from (x, y); a pixel beyond the border repeats its neighbour.
Color Canvas::block_mean(int x, int y) const {
  const int right = std::min(x + 1, width_ - 1);
  const int below = std::min(y + 1, height_ - 1);
  return (pixel(x, y) + pixel(right, y) + pixel(x, below) + pixel(right, below)) * 0.25F;
}

}  // namespace nox::scenes
