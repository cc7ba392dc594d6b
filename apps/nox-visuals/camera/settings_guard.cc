#include "nox-visuals/camera/settings_guard.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/source_options.h"
#include "nox-visuals/outputs/output_error.h"

namespace nox::app {
namespace {

bool holds(const CameraSettings &settings, const std::string &name) {
  return std::any_of(settings.controls.begin(), settings.controls.end(),
                     [&](const CameraSetting &it) { return it.name == name; });
}

// Complaints about what did not come back. The mode is free to change once nobody streams.
std::vector<std::string> restore(const CameraSettings &settings, Camera *camera) {
  const auto controls = camera->controls();
  for (const CameraSetting &setting : settings.controls) {
    const CameraControl *control = find_control(controls, setting.name);
    if (control != nullptr) camera->set(control->id, setting.value);
  }
  std::vector<std::string> complaints = complaints_about(settings, *camera);
  if (settings.mode && camera->mode() != settings.mode && !camera->set_mode(*settings.mode)) {
    complaints.emplace_back("its mode could not be set");
  }
  return complaints;
}

}  // namespace

SettingsGuard::SettingsGuard(Camera *camera, std::string undo_file)
    : camera_(camera), undo_file_(std::move(undo_file)) {
  if (std::filesystem::exists(undo_file_)) earlier_ = read_camera_settings(undo_file_);
  before_.camera = camera_->identity();
  before_.mode = camera_->mode();
}

SettingsGuard::~SettingsGuard() {
  if (kept_) return;
  try {
    take_back();
  } catch (const std::exception &error) {
    say(error.what());
  }
}

void SettingsGuard::note(const CameraControl &control) {
  if (holds(before_, control.name)) return;
  before_.controls.insert(before_.controls.begin(), {control.name, control.value});
  CameraSettings undo = earlier_.value_or(before_);
  if (earlier_) {
    std::vector<CameraSetting> more;
    std::copy_if(before_.controls.begin(), before_.controls.end(), std::back_inserter(more),
                 [&](const CameraSetting &it) { return !holds(*earlier_, it.name); });
    undo.controls.insert(undo.controls.begin(), more.begin(), more.end());
  }
  write_camera_settings(undo, undo_file_);
}

std::int64_t SettingsGuard::set(std::uint32_t id, std::int64_t value) {
  const auto controls = camera_->controls();
  const CameraControl *control = find_control(controls, id);
  if (control == nullptr) throw StreamError("the camera is gone");
  note(*control);
  camera_->set(id, value);
  const auto after = camera_->controls();
  const CameraControl *now = find_control(after, id);
  if (now == nullptr) throw StreamError("the camera is gone");
  return now->value;
}

std::vector<CameraSetting> SettingsGuard::touched() const {
  const auto controls = camera_->controls();
  std::vector<CameraSetting> touched;
  for (auto it = before_.controls.rbegin(); it != before_.controls.rend(); ++it) {
    const CameraControl *now = find_control(controls, it->name);
    if (now != nullptr) touched.push_back({it->name, now->value});
  }
  return touched;
}

void SettingsGuard::take_back() {
  if (camera_->identity().empty()) {
    if (!before_.controls.empty()) {
      say("the camera is gone with its new settings; once it is back, nox-visuals tune --undo "
          "restores those from before");
    }
    return;
  }
  const auto complaints = restore(before_, camera_);
  for (const std::string &complaint : complaints) say("not restored: " + complaint);
  if (before_.controls.empty() || !complaints.empty()) return;
  if (earlier_) {
    write_camera_settings(*earlier_, undo_file_);
  } else {
    std::filesystem::remove(undo_file_);
  }
  say("the camera is set as it was before");
}

std::vector<std::string> apply_for_good(Camera *camera, const CameraSettings &settings,
                                        const std::string &undo_file) {
  SettingsGuard guard(camera, undo_file);
  const auto controls = camera->controls();
  for (const CameraSetting &setting : settings.controls) {
    const CameraControl *control = find_control(controls, setting.name);
    if (control != nullptr && is_writable(*control)) guard.set(control->id, setting.value);
  }
  guard.keep();
  return complaints_about(settings, *camera);
}

std::vector<std::string> undo_settings(Camera *camera, const std::string &undo_file) {
  if (!std::filesystem::exists(undo_file)) {
    throw UsageError("nothing to undo: this camera was not tuned");
  }
  auto complaints = restore(read_camera_settings(undo_file), camera);
  if (complaints.empty()) std::filesystem::remove(undo_file);
  return complaints;
}

std::string undo_file_of(const std::string &identity) {
  const auto folder = std::filesystem::path(g_get_user_state_dir()) / "nox-visuals";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw OutputError(folder.string() + ": " + error.message());
  return folder / ("undo-" + as_name(identity));
}

}  // namespace nox::app
