// How a camera is run.
#ifndef NOX_VISUALS_OPTIONS_CAMERA_OPTIONS_H_
#define NOX_VISUALS_OPTIONS_CAMERA_OPTIONS_H_

#include <optional>
#include <string>

#include "nox-visuals/camera/mode_choice.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/sources/source.h"

namespace nox::app {

struct CameraOptions {
  std::optional<WantedMode> mode;
  std::string settings;  // file; empty: none
};

// Adds --mode and --camera-settings.
void add_camera_options(Command *command, CameraOptions *options);

// Puts them into the source. The mode of the command line holds against the file's. Throws
// UsageError when the source is no camera, or the file is broken.
void use_camera(const CameraOptions &options, Source *source);

// Adds --mode alone.
void add_mode_option(Command *command, std::optional<WantedMode> *mode);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_CAMERA_OPTIONS_H_
