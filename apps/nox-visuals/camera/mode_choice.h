// Which of a camera's modes serves the pen tracker best.
#ifndef NOX_VISUALS_CAMERA_MODE_CHOICE_H_
#define NOX_VISUALS_CAMERA_MODE_CHOICE_H_

#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/camera/camera.h"

namespace nox::app {

// A mode as people name it: "640x480@30". The rate may be left out (0): the fastest of that size.
struct WantedMode {
  std::uint32_t width = 0, height = 0;
  double rate = 0;
};

// None when the text is no mode.
std::optional<WantedMode> parse_mode(const std::string &text);

// The fastest of at least the tracker's work size, which size hardly helps and rate does; of
// equally fast ones a raw one before MJPEG, then one of the sensor's aspect (taken to be that of
// the largest mode), then the smallest. None when no mode serves: too small, gray or of another
// coding.
std::optional<CameraMode> choose_mode(const std::vector<CameraMode> &modes);

// The mode that is wanted, raw before MJPEG. None when the camera has it not.
std::optional<CameraMode> find_mode(const std::vector<CameraMode> &modes, const WantedMode &wanted);

// The one that is wanted, or else the best. Throws StreamError when the camera has not what is
// wanted; none where nothing is wanted and no mode serves.
std::optional<CameraMode> pick_mode(const std::vector<CameraMode> &modes,
                                    const std::optional<WantedMode> &wanted);

// "640x480@30", which parse_mode reads, and "YUYV 640x480 at 30".
std::string mode_word(const CameraMode &mode);
std::string mode_text(const CameraMode &mode);

// GStreamer's name of a raw format in colour by its four characters; null for others.
const char *raw_format(const std::string &four_characters);

}  // namespace nox::app

#endif  // NOX_VISUALS_CAMERA_MODE_CHOICE_H_
