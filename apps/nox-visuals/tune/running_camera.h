// A camera that runs in a pipeline.
#ifndef NOX_VISUALS_TUNE_RUNNING_CAMERA_H_
#define NOX_VISUALS_TUNE_RUNNING_CAMERA_H_

#include <memory>

#include "nox-visuals/sources/source.h"
#include "nox-visuals/tune/camera_pictures.h"

namespace nox::app {

// Starts it and waits for its first picture. SIGINT and SIGTERM end the wait for any picture.
// Throws StreamError, when somebody else uses the camera for one.
std::unique_ptr<CameraPictures> run_camera(const Source &source);

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_RUNNING_CAMERA_H_
