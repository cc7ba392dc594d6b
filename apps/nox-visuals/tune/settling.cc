#include "nox-visuals/tune/settling.h"

#include <cmath>

namespace nox::app {
namespace {

constexpr int kLongestDelay = 30;  // pictures
constexpr double kMuch = 3;        // levels of mean luma: beyond noise and a lamp's flicker
constexpr double kStill = 1;

}  // namespace

bool Settling::wait_for_change(const Light &before) {
  for (int pictures = 1; pictures <= kLongestDelay; ++pictures) {
    const Light now = measure_light(*pictures_->next().frame);
    if (std::abs(now.luma - before.luma) <= kMuch) continue;
    delay_ = pictures + 1;
    wait();
    return true;
  }
  return false;
}

void Settling::wait() {
  constexpr int kInARow = 3;
  for (int i = 0; i < delay_; ++i) pictures_->next();
  double last = measure_light(*pictures_->next().frame).luma;
  for (int still = 0, seen = 0; still < kInARow && seen < kLongestDelay; ++seen) {
    const double luma = measure_light(*pictures_->next().frame).luma;
    still = std::abs(luma - last) <= kStill ? still + 1 : 0;
    last = luma;
  }
}

}  // namespace nox::app
