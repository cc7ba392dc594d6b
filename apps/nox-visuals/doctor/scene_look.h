// What a source shows, over its first seconds.
#ifndef NOX_VISUALS_DOCTOR_SCENE_LOOK_H_
#define NOX_VISUALS_DOCTOR_SCENE_LOOK_H_

#include <string>
#include <vector>

#include "nox-visuals/doctor/finding.h"
#include "nox-visuals/observation.h"
#include "nox-visuals/sources/source.h"

namespace nox::app {

struct SceneLook {
  Totals totals;
  bool live = false;
  int width = 0, height = 0;
  double seconds = 0;         // that it took
  double bright = 0;          // share of the luma samples above the tracker's threshold
  double coloured = 0;        // the larger share of the two chroma planes
  std::vector<double> waits;  // from each frame's arrival to its event, in milliseconds; sorted
  std::string failure;        // why the source does not run; empty: it does
};

// Runs the source through a tracker for some hundred frames, or as long as it lasts, but not for
// more than ten seconds.
SceneLook look_at_scene(const Source &source, const std::string &word);

Findings findings_of(const SceneLook &look);

}  // namespace nox::app

#endif  // NOX_VISUALS_DOCTOR_SCENE_LOOK_H_
