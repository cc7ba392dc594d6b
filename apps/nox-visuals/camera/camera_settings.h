// Settings of a camera as a file that people can read: a line for each, name = value, and # begins
// a comment.
#ifndef NOX_VISUALS_CAMERA_CAMERA_SETTINGS_H_
#define NOX_VISUALS_CAMERA_CAMERA_SETTINGS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/camera/camera.h"

namespace nox::app {

struct CameraSetting {
  std::string name;  // of the control
  std::int64_t value = 0;
  bool operator==(const CameraSetting &) const = default;
};

struct CameraSettings {
  std::string camera;  // its identity
  std::optional<CameraMode> mode;
  std::vector<CameraSetting> controls;  // in the order in which they have to be set
};

// Throws UsageError, which names the file and the line.
CameraSettings read_camera_settings(const std::string &path);

// Throws OutputError.
void write_camera_settings(const CameraSettings &settings, const std::string &path);

// A sentence for each setting that the camera has not, or has another value of, unless another
// setting drives it.
std::vector<std::string> complaints_about(const CameraSettings &settings, const Camera &camera);

}  // namespace nox::app

#endif  // NOX_VISUALS_CAMERA_CAMERA_SETTINGS_H_
