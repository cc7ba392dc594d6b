#include "nox-visuals/options/camera_options.h"

#include <string>

#include "nox-visuals/camera/camera_settings.h"
#include "nox-visuals/errors.h"

namespace nox::app {

void add_mode_option(Command *command, std::optional<WantedMode> *mode) {
  const TakeWord take = [mode](const std::string &word) {
    *mode = parse_mode(word);
    if (!*mode) throw UsageError("--mode: takes WxH@R as in 640x480@30, not '" + word + "'");
  };
  command->option("--mode", take, "of the camera (default: the fastest that serves)")
      .value("WxH@R");
}

void add_camera_options(Command *command, CameraOptions *options) {
  add_mode_option(command, &options->mode);
  command->option("--camera-settings", &options->settings, "sets the camera as tune has found")
      .value("F");
}

void use_camera(const CameraOptions &options, Source *source) {
  if (!options.mode && options.settings.empty()) return;
  if (source->kind != SourceKind::kCamera) {
    throw UsageError("--mode and --camera-settings are for cameras");
  }
  CameraUse &use = source->camera;
  if (!options.settings.empty()) use.settings = read_camera_settings(options.settings);
  use.mode = options.mode;
  if (const auto &mode = use.settings.mode; !use.mode && mode) {
    use.mode = WantedMode{mode->width, mode->height, mode->rate};
  }
}

}  // namespace nox::app
