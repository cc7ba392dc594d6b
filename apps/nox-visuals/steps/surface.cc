#include "nox-visuals/steps/surface.h"

namespace nox::app {

Point picture_place(const std::array<float, 2> &raw) {
  constexpr double kHalfColumn = 0.5 / 448;
  constexpr double kHalfRow = 0.5 / 252;
  return {1 - static_cast<double>(raw[0]) - kHalfColumn, static_cast<double>(raw[1]) + kHalfRow};
}

void SurfaceStep::take(const Observation &in, std::vector<Observation> *out) {
  out->push_back(in);
  if (auto *pen = std::get_if<Pen>(&out->back())) {
    pen->at = picture_place(pen->raw);
    if (mirrored_) pen->at.x = 1 - pen->at.x;
  }
}

}  // namespace nox::app
