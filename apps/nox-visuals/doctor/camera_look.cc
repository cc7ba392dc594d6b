#include "nox-visuals/doctor/camera_look.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace nox::app {
namespace {

// The tracker's work size: a smaller picture has to be enlarged.
constexpr std::uint32_t kWorkWidth = 448;
constexpr std::uint32_t kWorkHeight = 252;
constexpr double kSmoothRate = 25;

using Controls = std::vector<CameraControl>;

const CameraControl *find(const Controls &controls, std::uint32_t id) {
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [id](const CameraControl &it) { return it.id == id; });
  return found == controls.end() ? nullptr : &*found;
}

std::string set_command(const std::string &device, const std::string &settings) {
  return "v4l2-ctl -d " + device + " -c " + settings;
}

std::string setting(const CameraControl &control, std::int64_t value) {
  return control.name + "=" + std::to_string(value);
}

std::string mode_text(const CameraMode &mode) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s %ux%u at %.4g", mode.format.c_str(), mode.width,
                mode.height, mode.rate);
  return text.data();
}

Finding look_at_modes(const Camera &camera) {
  const std::vector<CameraMode> modes = camera.modes();
  if (modes.empty()) return {Verdict::kWarn, "modes", "the camera lists none", ""};
  const CameraMode *fastest = nullptr;
  for (const CameraMode &mode : modes) {
    if (mode.width < kWorkWidth || mode.height < kWorkHeight) continue;
    if (fastest == nullptr || mode.rate > fastest->rate) fastest = &mode;
  }
  const std::string count = std::to_string(modes.size()) + " modes, ";
  if (fastest == nullptr) {
    return {Verdict::kWarn, "modes", count + "none of at least 448x252", "another camera"};
  }
  const std::string text = count + "fastest " + mode_text(*fastest) + " frames a second";
  if (fastest->rate >= kSmoothRate) return {Verdict::kOk, "modes", text, ""};
  return {Verdict::kWarn, "modes", text, "a camera with 30 frames a second or more"};
}

Finding look_at_exposure(const Controls &controls, const std::string &device,
                         std::optional<double> bright) {
  const std::string share = bright ? ", " + percent(*bright) + " above 170" : "";
  const CameraControl *automatic = find(controls, V4L2_CID_EXPOSURE_AUTO);
  if (automatic == nullptr) {
    return {Verdict::kWarn, "exposure", "cannot be set on this camera" + share, "a darker room"};
  }
  const bool by_hand = automatic->value == V4L2_EXPOSURE_MANUAL ||
                       automatic->value == V4L2_EXPOSURE_SHUTTER_PRIORITY;
  if (by_hand) return {Verdict::kOk, "exposure", "manual" + share, ""};
  std::string settings = setting(*automatic, V4L2_EXPOSURE_MANUAL);
  if (const CameraControl *time = find(controls, V4L2_CID_EXPOSURE_ABSOLUTE)) {
    constexpr std::int64_t kShort = 30;  // of 100 microseconds
    settings += "," + setting(*time, std::clamp(kShort, time->minimum, time->maximum));
  }
  return {Verdict::kWarn, "exposure", "automatic" + share, set_command(device, settings)};
}

// A setting that should be off while a pen is tracked.
struct Automatic {
  std::uint32_t id;
  const char *subject;
  const char *on;
  const char *off;
};
constexpr std::array<Automatic, 3> kAutomatics = {{
    {V4L2_CID_AUTO_WHITE_BALANCE, "white-balance", "automatic: it takes the glow for the light",
     "fixed"},
    {V4L2_CID_AUTOGAIN, "gain", "automatic", "fixed"},
    {V4L2_CID_EXPOSURE_AUTO_PRIORITY, "frame-rate", "falls in the dark",
     "does not depend on light"},
}};

Finding look_at_saturation(const CameraControl &saturation, const std::string &device) {
  if (saturation.value <= saturation.default_value) {
    return {Verdict::kOk, "saturation", "not above the driver's default", ""};
  }
  return {Verdict::kWarn, "saturation", "above the driver's default: clothes become pens",
          set_command(device, setting(saturation, saturation.default_value))};
}

}  // namespace

Findings look_at_camera(const Camera &camera, const std::string &device,
                        std::optional<double> bright) {
  const Controls controls = camera.controls();
  Findings findings = {look_at_modes(camera), look_at_exposure(controls, device, bright)};
  for (const Automatic &automatic : kAutomatics) {
    const CameraControl *control = find(controls, automatic.id);
    if (control == nullptr) continue;
    if (control->value == 0) {
      findings.push_back({Verdict::kOk, automatic.subject, automatic.off, ""});
    } else {
      findings.push_back({Verdict::kWarn, automatic.subject, automatic.on,
                          set_command(device, setting(*control, 0))});
    }
  }
  if (const CameraControl *saturation = find(controls, V4L2_CID_SATURATION)) {
    findings.push_back(look_at_saturation(*saturation, device));
  }
  return findings;
}

}  // namespace nox::app
