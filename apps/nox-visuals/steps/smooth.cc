#include "nox-visuals/steps/smooth.h"

namespace nox::app {
namespace {

// Of the picture that the tracker works on, and of nearly every surface: a speed means the same on
// both axes.
constexpr double kHeightInWidths = 252.0 / 448.0;

}  // namespace

void Smooth::take(const Observation &in, std::vector<Observation> *out) {
  out->push_back(in);
  if (auto *pen = std::get_if<Pen>(&out->back())) {
    const std::int64_t now = stream_ns(pen->when);
    pen->at.x = x_.filter(pen->at.x, now);
    pen->at.y = y_.filter(pen->at.y * kHeightInWidths, now) / kHeightInWidths;
  } else if (std::holds_alternative<Loss>(in)) {
    x_.reset();
    y_.reset();
  }
}

}  // namespace nox::app
