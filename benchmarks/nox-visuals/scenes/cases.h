// The scenes of the table: which pen in front of what, through which encoder.
#ifndef BENCHMARKS_NOX_VISUALS_SCENES_CASES_H_
#define BENCHMARKS_NOX_VISUALS_SCENES_CASES_H_

#include <string>
#include <vector>

#include "nox-visuals/scenes/clip.h"
#include "scenes/lit_scene.h"

namespace nox::scenes {

struct Case {
  std::string background;  // a room's name, or a file's in the folder of videos
  LitPen pen;
  Codec codec = Codec::kH264;
  int kbits = 1500;

  bool is_room() const { return background.find('.') == std::string::npos; }
  std::string name() const;       // for people
  std::string file_name() const;  // the same as the name of a clip
};

// All scenes; those in front of videos are left out where `videos` is no folder.
std::vector<Case> all_cases(const std::string &videos);

// The frames of a scene as a viewer decodes them, and where the pen was.
struct Recording {
  Clip clip;
  std::vector<PenMoment> truth;
};

// The clip is made in `folder` unless it lies there already.
Recording record(const Case &scene, const std::string &folder, const std::string &videos);

// Five seconds of the same scene in which nobody shows the pen.
Clip record_without_pen(const Case &scene, const std::string &folder, const std::string &videos);

}  // namespace nox::scenes

#endif  // BENCHMARKS_NOX_VISUALS_SCENES_CASES_H_
