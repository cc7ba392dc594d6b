#include "nox-visuals/camera/wanted_settings.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>

namespace nox::app {
namespace {

// Switches that have to be off.
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

bool offers(const CameraControl &control, std::int64_t value) {
  return std::find(control.choices.begin(), control.choices.end(), value) != control.choices.end();
}

// The camera leaves the time of the exposure to the user.
bool is_by_hand(std::int64_t automatic) {
  return automatic == V4L2_EXPOSURE_MANUAL || automatic == V4L2_EXPOSURE_SHUTTER_PRIORITY;
}

std::optional<std::int64_t> manual_value(const CameraControl &automatic) {
  if (is_by_hand(automatic.value)) return automatic.value;
  if (!is_writable(automatic)) return {};
  for (const std::int64_t value : {V4L2_EXPOSURE_MANUAL, V4L2_EXPOSURE_SHUTTER_PRIORITY}) {
    if (offers(automatic, value)) return value;
  }
  return {};
}

WantedSetting wanted_switch(const Automatic &automatic, const CameraControl &control) {
  const bool on = control.value != 0;
  return {control.id,
          0,
          on,
          is_writable(control),
          automatic.subject,
          on ? automatic.on : automatic.off};
}

WantedSetting wanted_saturation(const CameraControl &control) {
  const bool vivid = control.value > control.default_value;
  return {
      control.id,
      control.default_value,
      vivid,
      is_writable(control),
      "saturation",
      vivid ? "above the driver's default: clothes become pens" : "not above the driver's default"};
}

}  // namespace

std::vector<WantedSetting> wanted_settings(const std::vector<CameraControl> &controls) {
  std::vector<WantedSetting> wanted;
  for (const Automatic &it : kAutomatics) {
    if (const auto *control = find_control(controls, it.id))
      wanted.push_back(wanted_switch(it, *control));
  }
  // Where it was automatic, its value is whatever the last light made of it.
  if (const auto *gain = find_control(controls, V4L2_CID_GAIN)) {
    wanted.push_back({gain->id, gain->default_value, false, is_writable(*gain), "gain", ""});
  }
  if (const auto *saturation = find_control(controls, V4L2_CID_SATURATION)) {
    wanted.push_back(wanted_saturation(*saturation));
  }
  return wanted;
}

std::optional<ExposureSettings> exposure_settings(const std::vector<CameraControl> &controls) {
  const CameraControl *time = find_control(controls, V4L2_CID_EXPOSURE_ABSOLUTE);
  if (time == nullptr) time = find_control(controls, V4L2_CID_EXPOSURE);
  if (time == nullptr || !is_writable(*time) || time->maximum <= time->minimum) return {};
  ExposureSettings exposure;
  exposure.time = *time;
  constexpr double kAbsoluteUnit = 100e-6;
  if (time->id == V4L2_CID_EXPOSURE_ABSOLUTE) exposure.unit = kAbsoluteUnit;
  const CameraControl *automatic = find_control(controls, V4L2_CID_EXPOSURE_AUTO);
  if (automatic == nullptr) return exposure;
  const std::optional<std::int64_t> value = manual_value(*automatic);
  if (!value) return {};
  const bool by_hand = is_by_hand(automatic->value);
  exposure.manual = WantedSetting{automatic->id, *value,     !by_hand,
                                  true,          "exposure", by_hand ? "manual" : "automatic"};
  return exposure;
}

}  // namespace nox::app
