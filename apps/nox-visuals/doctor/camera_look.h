// How a camera is set, as far as its driver tells.
#ifndef NOX_VISUALS_DOCTOR_CAMERA_LOOK_H_
#define NOX_VISUALS_DOCTOR_CAMERA_LOOK_H_

#include <optional>
#include <string>

#include "nox-visuals/camera/camera.h"
#include "nox-visuals/doctor/finding.h"

namespace nox::app {

// Modes and automatic settings. `device` is for the commands of the advice; `bright`, where it is
// known, is the share of luma samples above the tracker's threshold.
Findings look_at_camera(const Camera &camera, const std::string &device,
                        std::optional<double> bright);

}  // namespace nox::app

#endif  // NOX_VISUALS_DOCTOR_CAMERA_LOOK_H_
