#include "nox-visuals/tune/tuner.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "nox-visuals/tune/pen_look.h"
#include "nox-visuals/tune/pen_watch.h"

namespace nox::app {
namespace {

constexpr int kLook = 20;  // pictures
constexpr double kWatchSeconds = 5;

// The glow of a pen is coloured as strongly as can be, other things are not; at half, even that is
// hardly above the threshold.
constexpr std::array<double, 4> kSaturations = {0.85, 0.7, 0.6, 0.5};

std::string number(std::int64_t value) {
  return std::to_string(value);
}

std::string share_text(double share) {
  return percent(share) + " at 170 or above";
}

ExposureRange range_of(const ExposureSettings &exposure, double rate) {
  const CameraControl &time = exposure.time;
  ExposureRange range{time.minimum, time.maximum, std::max<std::int64_t>(time.step, 1)};
  if (exposure.unit <= 0 || rate <= 0) return range;
  const auto frame = static_cast<std::int64_t>(1 / rate / exposure.unit);
  if (frame < range.longest) {
    const std::int64_t steps = (frame - range.shortest) / range.step;
    range.longest = range.shortest + std::max<std::int64_t>(steps, 0) * range.step;
  }
  return range;
}

std::string place_text(const PenPlace &place) {
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "at %.0f %% of the width and %.0f %% of the height",
                place.x * 100, place.y * 100);
  return text.data();
}

}  // namespace

Tuner::Tuner(Camera *camera, SettingsGuard *guard, CameraPictures *pictures, double rate,
             Report report)
    : camera_(camera),
      guard_(guard),
      pictures_(pictures),
      rate_(rate),
      report_(std::move(report)),
      settling_(pictures) {}

void Tuner::set_camera() {
  fix_settings();
  search_exposure();
  lower_saturation();
}

void Tuner::fix_settings() {
  const auto wanted = wanted_settings(camera_->controls());
  if (camera_->controls().empty()) {
    report_({Verdict::kWarn, "controls", "this camera has none", ""});
  }
  for (const WantedSetting &it : wanted) fix(it);
  hold_white_balance();
}

void Tuner::fix(const WantedSetting &wanted) {
  if (!wanted.settable) {
    if (wanted.harmful) {
      report_({Verdict::kWarn, wanted.subject, wanted.text + ", and cannot be set", ""});
    }
    return;
  }
  const std::int64_t now = guard_->set(wanted.id, wanted.value);
  if (now != wanted.value) {
    report_({Verdict::kWarn, wanted.subject,
             "the camera keeps " + number(now) + " and not " + number(wanted.value), ""});
    return;
  }
  for (const WantedSetting &it : wanted_settings(camera_->controls())) {
    if (it.id != wanted.id || it.text.empty()) continue;
    report_({Verdict::kOk, it.subject, it.text, ""});
  }
}

// What the automatic found for this room stays, and goes into the file of settings.
void Tuner::hold_white_balance() {
  const auto controls = camera_->controls();
  for (const std::uint32_t id :
       {V4L2_CID_WHITE_BALANCE_TEMPERATURE, V4L2_CID_RED_BALANCE, V4L2_CID_BLUE_BALANCE}) {
    const CameraControl *control = find_control(controls, id);
    if (control == nullptr || !is_writable(*control) || !is_active(*control)) continue;
    guard_->set(id, control->value);
  }
}

void Tuner::search_exposure() {
  auto exposure = exposure_settings(camera_->controls());
  if (exposure && exposure->manual) {
    const std::int64_t now = guard_->set(exposure->manual->id, exposure->manual->value);
    if (now != exposure->manual->value) exposure.reset();
  }
  if (!exposure) {
    const Light light = measure_light(pictures_, kLook);
    report_({Verdict::kWarn, "exposure",
             "cannot be set by hand on this camera; " + share_text(light.most()),
             "a darker room, or track --darken auto"});
    return;
  }
  ExposureSearch search(pictures_, &settling_,
                        [&](std::int64_t value) { return guard_->set(exposure->time.id, value); });
  report_exposure(search.run(range_of(*exposure, rate_)), *exposure);
}

void Tuner::report_exposure(const ExposureFound &found, const ExposureSettings &exposure) {
  std::string text = number(found.value);
  if (exposure.unit > 0) {
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), " (%.3g ms)",
                  1000 * exposure.unit * static_cast<double>(found.value));
    text += time.data();
  }
  const std::string share = share_text(found.light.most());
  const char *masked = "cover the lamp or window that is left, or track --mask-learn 3";
  switch (found.outcome) {
    case ExposureOutcome::kFound:
      report_({Verdict::kOk, "exposure", text + ", " + share, ""});
      break;
    case ExposureOutcome::kDark:
      report_({Verdict::kOk, "exposure", text + ", the longest, " + share, ""});
      break;
    case ExposureOutcome::kBright:
      report_({Verdict::kWarn, "exposure", text + ", the shortest, leaves " + share, masked});
      break;
    case ExposureOutcome::kStuck:
      report_({Verdict::kWarn, "exposure",
               "the camera keeps " + text + " whatever it is told; " + share,
               "a darker room, or track --darken auto"});
      break;
    case ExposureOutcome::kNotShown:
      report_({Verdict::kWarn, "exposure",
               "the camera says that it follows, but its pictures do not; " + share,
               "a darker room, or track --darken auto"});
      break;
  }
}

// Whether the scene is free of false pens.
bool Tuner::watch() {
  return !watch_for_false_pens(pictures_, kWatchSeconds);
}

void Tuner::lower_saturation() {
  const auto first = watch_for_false_pens(pictures_, kWatchSeconds);
  if (!first) {
    report_({Verdict::kOk, "false-pens", "none", ""});
    return;
  }
  const auto controls = camera_->controls();
  const CameraControl *saturation = find_control(controls, V4L2_CID_SATURATION);
  const bool settable = saturation != nullptr && is_writable(*saturation);
  if (settable) {
    const std::int64_t normal = saturation->value;
    for (const double part : kSaturations) {
      const double strength = static_cast<double>(normal - saturation->minimum) * part;
      guard_->set(saturation->id, saturation->minimum + std::llround(strength));
      settling_.wait();
      if (!watch()) continue;
      report_({Verdict::kOk, "false-pens", "none, with the saturation at " + percent(part), ""});
      return;
    }
    guard_->set(saturation->id, normal);
    settling_.wait();
  }
  report_({Verdict::kWarn, "false-pens",
           "something is taken for a pen " + place_text(*first) +
               (settable ? ", with less saturation too" : ""),
           "cover it or turn it off, or track --mask-learn 3"});
}

void Tuner::look_at_the_pen(double seconds) {
  const Light without = measure_light(pictures_, kLook);
  for (const Finding &finding : findings_of(look_at_pen(pictures_, without, seconds))) {
    report_(finding);
  }
}

}  // namespace nox::app
