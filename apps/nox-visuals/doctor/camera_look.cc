#include "nox-visuals/doctor/camera_look.h"

#include "nox-visuals/camera/mode_choice.h"
#include "nox-visuals/camera/wanted_settings.h"

namespace nox::app {
namespace {

constexpr double kSmoothRate = 25;

using Controls = std::vector<CameraControl>;

std::string set_command(const std::string &device, const std::string &settings) {
  return "v4l2-ctl -d " + device + " -c " + settings;
}

std::string setting(const CameraControl &control, std::int64_t value) {
  return control.name + "=" + std::to_string(value);
}

Finding look_at_modes(const Camera &camera) {
  const std::vector<CameraMode> modes = camera.modes();
  if (modes.empty()) return {Verdict::kWarn, "modes", "the camera lists none", ""};
  const std::string count = std::to_string(modes.size()) + " modes, ";
  const std::optional<CameraMode> best = choose_mode(modes);
  if (!best) {
    return {Verdict::kWarn, "modes", count + "none in colour of at least 448x252",
            "another camera"};
  }
  const std::string text = count + "best " + mode_text(*best) + " frames a second";
  if (best->rate >= kSmoothRate) return {Verdict::kOk, "modes", text, ""};
  return {Verdict::kWarn, "modes", text, "a camera with 30 frames a second or more"};
}

Finding look_at_exposure(const Controls &controls, const std::string &device,
                         std::optional<double> bright) {
  const std::string share = bright ? ", " + percent(*bright) + " above 170" : "";
  const std::optional<ExposureSettings> exposure = exposure_settings(controls);
  if (!exposure) {
    return {Verdict::kWarn, "exposure", "cannot be set on this camera" + share, "a darker room"};
  }
  if (!exposure->manual || !exposure->manual->harmful) {
    return {Verdict::kOk, "exposure", "manual" + share, ""};
  }
  return {Verdict::kWarn, "exposure", exposure->manual->text + share, "nox-visuals tune " + device};
}

Finding look_at_setting(const WantedSetting &wanted, const Controls &controls,
                        const std::string &device) {
  if (!wanted.harmful) return {Verdict::kOk, wanted.subject, wanted.text, ""};
  if (!wanted.settable) return {Verdict::kWarn, wanted.subject, wanted.text, ""};
  return {Verdict::kWarn, wanted.subject, wanted.text,
          set_command(device, setting(*find_control(controls, wanted.id), wanted.value))};
}

}  // namespace

Findings look_at_camera(const Camera &camera, const std::string &device,
                        std::optional<double> bright) {
  const Controls controls = camera.controls();
  Findings findings = {look_at_modes(camera), look_at_exposure(controls, device, bright)};
  for (const WantedSetting &wanted : wanted_settings(controls)) {
    if (!wanted.text.empty()) findings.push_back(look_at_setting(wanted, controls, device));
  }
  return findings;
}

}  // namespace nox::app
