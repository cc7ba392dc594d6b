// Sets a camera and can take it all back: after an error, after an interrupt, and, from a file,
// whenever the user wants it.
#ifndef NOX_VISUALS_CAMERA_SETTINGS_GUARD_H_
#define NOX_VISUALS_CAMERA_SETTINGS_GUARD_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/camera/camera.h"
#include "nox-visuals/camera/camera_settings.h"

namespace nox::app {

// What a control had is written to the undo file before it is touched, so that even a process that
// is killed can be undone. A file that is there already holds what was set before an earlier run:
// its values stay, and only what it lacks is added.
class SettingsGuard {
 public:
  // `camera` must outlive it. Nothing is touched yet. Throws UsageError when the undo file is
  // broken.
  SettingsGuard(Camera *camera, std::string undo_file);

  // Unless kept, takes back what it has set, and says so.
  ~SettingsGuard();
  SettingsGuard(const SettingsGuard &) = delete;
  SettingsGuard &operator=(const SettingsGuard &) = delete;

  // Sets a control that the camera has, and returns the value that the camera says it has now.
  // Throws StreamError when the camera is gone, OutputError when the undo file cannot be written.
  std::int64_t set(std::uint32_t id, std::int64_t value);

  // Everything stays as it was set.
  void keep() { kept_ = true; }

  // All that was touched, with its value of now, in the order of the first touch.
  std::vector<CameraSetting> touched() const;

 private:
  void note(const CameraControl &control);
  void take_back();

  Camera *camera_;
  std::string undo_file_;
  std::optional<CameraSettings> earlier_;  // of the undo file before this run
  CameraSettings before_;                  // what this run has touched, last first
  bool kept_ = false;
};

// Sets all that the camera has of these, for good, and returns a sentence for each setting that it
// has not, does not take or has made something else of. Throws as SettingsGuard does.
std::vector<std::string> apply_for_good(Camera *camera, const CameraSettings &settings,
                                        const std::string &undo_file);

// Sets all that was set before the undo file was begun, and removes the file. Returns a sentence
// for each setting that did not come back. Throws UsageError when there is no such file.
std::vector<std::string> undo_settings(Camera *camera, const std::string &undo_file);

// The undo file of a camera of this identity, in the user's folder for state, which is made.
std::string undo_file_of(const std::string &identity);

}  // namespace nox::app

#endif  // NOX_VISUALS_CAMERA_SETTINGS_GUARD_H_
