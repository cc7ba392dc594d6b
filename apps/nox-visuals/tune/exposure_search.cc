#include "nox-visuals/tune/exposure_search.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nox::app {
namespace {

constexpr int kGlance = 6;  // pictures
constexpr int kLook = 20;

bool is_dark(const Light &light) {
  return light.most() <= kShareLeft;
}

// Half as much light again is the same step wherever it is taken.
std::int64_t between(std::int64_t low, std::int64_t high, const ExposureRange &range) {
  const double middle =
      std::sqrt(std::max(1.0, static_cast<double>(low)) * static_cast<double>(high));
  const std::int64_t steps = (std::llround(middle) - range.shortest) / range.step;
  return std::clamp(range.shortest + steps * range.step, low + range.step, high - range.step);
}

}  // namespace

ExposureSearch::ExposureSearch(CameraPictures *pictures, Settling *settling, Set set)
    : pictures_(pictures), settling_(settling), set_(std::move(set)) {}

ExposureFound ExposureSearch::try_value(std::int64_t value) {
  const std::int64_t now = set_(value);
  settling_->wait();
  return {ExposureOutcome::kFound, now, measure_light(pictures_, kGlance)};
}

ExposureFound ExposureSearch::run(const ExposureRange &range) {
  ExposureFound longest = try_value(range.longest);
  ExposureFound shortest{ExposureOutcome::kFound, set_(range.shortest), {}};
  const bool follows = settling_->wait_for_change(longest.light);
  shortest.light = measure_light(pictures_, kGlance);
  if (shortest.value == longest.value) {
    shortest.outcome = ExposureOutcome::kStuck;
    return shortest;
  }
  // In the dark there is nothing to see of an exposure.
  if (!follows && !is_dark(longest.light)) {
    shortest.outcome = ExposureOutcome::kNotShown;
    return shortest;
  }
  if (is_dark(longest.light)) {
    ExposureFound found = confirm(try_value(range.longest), range);
    if (found.value == longest.value) found.outcome = ExposureOutcome::kDark;
    return found;
  }
  if (!is_dark(shortest.light)) {
    shortest.outcome = ExposureOutcome::kBright;
    return shortest;
  }
  return confirm(bisect(range), range);
}

// Narrows what is asked for, whatever the camera makes of it: it may have coarser steps than it
// says.
ExposureFound ExposureSearch::bisect(const ExposureRange &range) {
  constexpr std::int64_t kFine = 50;  // a fiftieth more light is no more
  std::int64_t dark = range.shortest;
  std::int64_t bright = range.longest;
  while (bright - dark > std::max(range.step, dark / kFine)) {
    const std::int64_t wanted = between(dark, bright, range);
    (is_dark(try_value(wanted).light) ? dark : bright) = wanted;
  }
  return try_value(dark);
}

// Over more pictures, in which lamps flicker: what does not hold is shortened by a tenth.
ExposureFound ExposureSearch::confirm(ExposureFound found, const ExposureRange &range) {
  for (;;) {
    found.light = measure_light(pictures_, kLook);
    if (is_dark(found.light)) return found;
    const std::int64_t less =
        std::max({range.shortest, std::min(found.value * 9 / 10, found.value - range.step)});
    const ExposureFound shorter = try_value(less);
    if (shorter.value >= found.value) {
      found.outcome = ExposureOutcome::kBright;
      return found;
    }
    found = shorter;
  }
}

}  // namespace nox::app
