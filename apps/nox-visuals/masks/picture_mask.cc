#include "nox-visuals/masks/picture_mask.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace nox::app {

PictureMask::PictureMask(int width, int height)
    : width_(width),
      height_(height),
      hidden_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

void PictureMask::add(const PictureMask &other) {
  std::transform(hidden_.begin(), hidden_.end(), other.hidden_.begin(), hidden_.begin(),
                 std::bit_or<>());
}

double PictureMask::share() const {
  if (hidden_.empty()) return 0;
  return static_cast<double>(std::accumulate(hidden_.begin(), hidden_.end(), std::size_t{0})) /
         static_cast<double>(hidden_.size());
}

PictureMask PictureMask::scaled(int width, int height) const {
  PictureMask other(width, height);
  const auto place = [](std::int64_t i, std::int64_t size, std::int64_t own) {
    return static_cast<int>((2 * i + 1) * own / (2 * size));
  };
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (hidden(place(x, width, width_), place(y, height, height_))) other.hide(x, y);
    }
  }
  return other;
}

}  // namespace nox::app
