#include "nox-visuals/scenes/score.h"

#include <algorithm>
#include <cmath>

#include "nox-visuals/steps/surface.h"

namespace nox::scenes {
namespace {

constexpr double kWidth = 640;  // pixels in which errors are told
constexpr double kFar = 32;     // beyond the stroke's half

double error_of(const app::Sighting &seen, const PenMoment &truth, double ratio) {
  const app::Point at = app::picture_place({seen.x, seen.y});
  return kWidth * std::hypot(at.x - static_cast<double>(truth.middle.x),
                             (at.y - static_cast<double>(truth.middle.y)) * ratio);
}

double half_length(const PenStroke &stroke, int width) {
  return kWidth / width / 2 *
         std::hypot(static_cast<double>(stroke.to.x - stroke.from.x),
                    static_cast<double>(stroke.to.y - stroke.from.y));
}

}  // namespace

double Score::error(double share) const {
  if (errors.empty()) return 0;
  return errors[static_cast<std::size_t>(share * static_cast<double>(errors.size() - 1))];
}

Score compare(const Sightings &seen, const std::vector<PenMoment> &truth, int width, int height) {
  Score score;
  score.frames = static_cast<int>(seen.size());
  for (std::size_t i = 0; i < seen.size(); ++i) {
    if (truth[i].visible) ++score.visible;
    if (!seen[i]) continue;
    const double error = error_of(*seen[i], truth[i], static_cast<double>(height) / width);
    if (!truth[i].visible || error > kFar + half_length(truth[i].stroke, width)) {
      ++score.wrong;
      continue;
    }
    ++score.found;
    score.right += seen[i]->pressed == truth[i].stroke.pressed ? 1 : 0;
    score.errors.push_back(error);
  }
  std::sort(score.errors.begin(), score.errors.end());
  return score;
}

}  // namespace nox::scenes
