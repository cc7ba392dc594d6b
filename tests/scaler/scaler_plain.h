// The scaler once more, for tests: written from the arithmetic, one output sample at a time.
#ifndef SCALER_SCALER_PLAIN_H_
#define SCALER_SCALER_PLAIN_H_

#include <cstdint>
#include <vector>

namespace nox::test {

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> samples = {};

  Picture() = default;
  Picture(int w, int h)
      : width(w), height(h), samples(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}
  std::uint8_t &at(int x, int y) {
    return samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
  }
  int at(int x, int y) const {
    return samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
  }
};

// A request: full sizes, and whether the plane at hand has half of them.
struct PlainSizes {
  int in_width;
  int in_height;
  int out_width;
  int out_height;
  bool half_plane = false;
};

// What each implementation answers, by its id.
int select_plain(const PlainSizes &sizes);

// Means over blocks of `factor` squared, for the given output size.
Picture box_plain(const Picture &src, int factor, int out_width, int out_height);

// taps[phase][t], rounded and corrected.
std::vector<std::vector<int>> taps_plain(double ratio, int taps, bool lanczos);

Picture tiled_plain(const Picture &src, const PlainSizes &sizes);
Picture separable_plain(const Picture &src, const PlainSizes &sizes);

// What a selection for these sizes makes of a plane; empty where nothing is written.
Picture scale_plain(const Picture &src, const PlainSizes &sizes);

}  // namespace nox::test

#endif  // SCALER_SCALER_PLAIN_H_
