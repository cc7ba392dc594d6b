// Sets a camera so that of all it sees the pen alone is bright and strongly coloured.
#ifndef NOX_VISUALS_TUNE_TUNER_H_
#define NOX_VISUALS_TUNE_TUNER_H_

#include <functional>

#include "nox-visuals/camera/camera.h"
#include "nox-visuals/camera/settings_guard.h"
#include "nox-visuals/camera/wanted_settings.h"
#include "nox-visuals/doctor/finding.h"
#include "nox-visuals/tune/camera_pictures.h"
#include "nox-visuals/tune/exposure_search.h"
#include "nox-visuals/tune/settling.h"

namespace nox::app {

// In this order, each step on what those before it have set:
//   1. what is automatic is fixed, and gain and saturation get the driver's defaults;
//   2. the longest exposure is searched at which the scene without the pen stays dark, but no
//      longer than a frame lasts;
//   3. the scene is watched for false pens, and the saturation lowered as long as there are any;
//   4. the pen is looked at.
// What a camera lacks is left out and said.
class Tuner {
 public:
  using Report = std::function<void(const Finding &finding)>;

  // The camera runs with `rate` frames a second (0: unknown); all of these outlive the tuner.
  Tuner(Camera *camera, SettingsGuard *guard, CameraPictures *pictures, double rate, Report report);

  // Steps 1 to 3, in a scene without the pen. Throws StreamError when the camera is gone or the
  // user has interrupted, and OutputError.
  void set_camera();

  // Step 4, for not longer than so many seconds. Throws as above.
  void look_at_the_pen(double seconds);

 private:
  void fix_settings();
  void fix(const WantedSetting &wanted);
  void hold_white_balance();
  void search_exposure();
  void lower_saturation();
  void report_exposure(const ExposureFound &found, const ExposureSettings &exposure);
  bool watch();

  Camera *camera_;
  SettingsGuard *guard_;
  CameraPictures *pictures_;
  double rate_;
  Report report_;
  Settling settling_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_TUNER_H_
