#include "nox-visuals/steps/surface.h"

namespace nox::app {
namespace {

constexpr double kHalfColumn = 0.5 / 448;
constexpr double kHalfRow = 0.5 / 252;

}  // namespace

void SurfaceStep::take(const Observation &in, std::vector<Observation> *out) {
  out->push_back(in);
  if (auto *pen = std::get_if<Pen>(&out->back())) {
    const double u = 1 - static_cast<double>(pen->raw[0]) - kHalfColumn;
    pen->at = {mirrored_ ? 1 - u : u, static_cast<double>(pen->raw[1]) + kHalfRow};
  }
}

}  // namespace nox::app
