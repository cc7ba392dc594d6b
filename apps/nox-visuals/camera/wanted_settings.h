// What a camera's settings should be while a pen is tracked, as far as that is known without a
// picture: who tunes sets them, who advises names them.
#ifndef NOX_VISUALS_CAMERA_WANTED_SETTINGS_H_
#define NOX_VISUALS_CAMERA_WANTED_SETTINGS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/camera/camera.h"

namespace nox::app {

struct WantedSetting {
  std::uint32_t id = 0;
  std::int64_t value = 0;  // that it should have
  bool harmful = false;    // the value that it has
  bool settable = true;
  std::string subject;  // one word
  std::string text;     // what its value of now means; empty: nothing worth saying
};

// What the camera has of the settings that should be fixed, in the order in which they have to be
// set: one that is automatic before what it drives. Those of the exposure are apart.
std::vector<WantedSetting> wanted_settings(const std::vector<CameraControl> &controls);

struct ExposureSettings {
  std::optional<WantedSetting> manual;  // to be set first; none: it is always so
  CameraControl time;
  double unit = 0;  // one step of `time` in seconds; 0: the driver does not tell
};

// None when the exposure of this camera cannot be set by hand.
std::optional<ExposureSettings> exposure_settings(const std::vector<CameraControl> &controls);

}  // namespace nox::app

#endif  // NOX_VISUALS_CAMERA_WANTED_SETTINGS_H_
