// What was said of the pen beside the truth.
#ifndef BENCHMARKS_NOX_VISUALS_SCENES_SCORE_H_
#define BENCHMARKS_NOX_VISUALS_SCENES_SCORE_H_

#include <optional>
#include <vector>

#include "nox-visuals/steps/sighting.h"
#include "scenes/pen_motion.h"

namespace nox::scenes {

using Sightings = std::vector<std::optional<app::Sighting>>;  // by the frame

struct Score {
  int frames = 0;
  int visible = 0;             // frames with a pen
  int found = 0;               // of these
  int right = 0;               // of the found ones, pressed or not as it was
  int wrong = 0;               // frames in which something else was taken for it
  std::vector<double> errors;  // of the found ones, in pixels of a picture 640 wide, rising

  double error(double share) const;  // that this share stays under; 0 without any
};

// A sighting further off than the tip of the longest glow is of something else.
Score compare(const Sightings &seen, const std::vector<PenMoment> &truth, int width, int height);

}  // namespace nox::scenes

#endif  // BENCHMARKS_NOX_VISUALS_SCENES_SCORE_H_
