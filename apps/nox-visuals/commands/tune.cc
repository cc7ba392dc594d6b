// nox-visuals tune: sets a camera for a pen, and takes it back.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "nox-visuals/camera/mode_choice.h"
#include "nox-visuals/camera/settings_guard.h"
#include "nox-visuals/camera/v4l2_camera.h"
#include "nox-visuals/commands/commands.h"
#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/json_object.h"
#include "nox-visuals/options/camera_options.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/sources/source.h"
#include "nox-visuals/tune/running_camera.h"
#include "nox-visuals/tune/tuner.h"

namespace nox::app {
namespace {

struct TuneOptions {
  std::string device;
  std::optional<WantedMode> mode;
  double pen_seconds = 30;
  std::string output;  // file of settings; empty: none
  bool undo = false;
  bool json = false;
};

void print_mode(const CameraMode &mode, bool chosen, bool json) {
  if (!json) {
    std::cout << (chosen ? "* " : "  ") << mode_text(mode) << '\n';
    return;
  }
  JsonObject object;
  object.text("type", "mode");
  object.text("format", mode.format);
  object.integer("width", mode.width);
  object.integer("height", mode.height);
  object.number("rate", mode.rate);
  object.boolean("chosen", chosen);
  std::cout << object.str() << '\n';
}

void print_settings(const CameraSettings &settings, bool json) {
  if (!json) {
    for (const CameraSetting &it : settings.controls) {
      std::cout << "set  " << it.name << " " << it.value << '\n';
    }
    return;
  }
  JsonObject controls;
  for (const CameraSetting &it : settings.controls) {
    controls.raw(it.name, std::to_string(it.value));
  }
  JsonObject object;
  object.text("type", "settings");
  if (settings.mode) object.text("mode", mode_word(*settings.mode));
  object.raw("controls", controls.str());
  std::cout << object.str() << '\n';
}

void print_finding(const Finding &finding, bool json) {
  std::cout << (json ? to_json(finding) : to_line(finding)) << '\n' << std::flush;
}

std::optional<CameraMode> list_modes(const Camera &camera, const TuneOptions &options) {
  const std::optional<CameraMode> chosen = pick_mode(camera.modes(), options.mode);
  for (const CameraMode &mode : camera.modes()) print_mode(mode, mode == chosen, options.json);
  if (!chosen) {
    print_finding({Verdict::kWarn, "modes", "none in colour of at least 448x252", "another camera"},
                  options.json);
  }
  return chosen;
}

int undo(V4l2Camera *camera) {
  const auto complaints = undo_settings(camera, undo_file_of(camera->identity()));
  for (const std::string &complaint : complaints) say("not restored: " + complaint);
  if (!complaints.empty()) return kStreamFailed;
  say("the camera is set as it was before");
  return kDone;
}

int tune(const TuneOptions &options) {
  Source source = parse_source(options.device, 0);
  if (source.kind != SourceKind::kCamera) throw UsageError(options.device + ": is no camera");
  V4l2Camera camera(options.device);
  if (options.undo) return undo(&camera);
  const std::optional<CameraMode> mode = list_modes(camera, options);
  source.camera.mode = options.mode;
  SettingsGuard guard(&camera, undo_file_of(camera.identity()));
  say("starting; keep the pen out of view");
  // Gone before the guard takes back what has to be taken back.
  const std::unique_ptr<CameraPictures> pictures = run_camera(source);
  Tuner tuner(&camera, &guard, pictures.get(), mode ? mode->rate : 0,
              [&](const Finding &finding) { print_finding(finding, options.json); });
  tuner.set_camera();
  const CameraSettings settings{camera.identity(), mode, guard.touched()};
  if (options.pen_seconds > 0) {
    say("now show the pen: hover, press and draw");
    tuner.look_at_the_pen(options.pen_seconds);
  }
  print_settings(settings, options.json);
  if (!options.output.empty()) write_camera_settings(settings, options.output);
  guard.keep();
  return kDone;
}

}  // namespace

void add_tune(CLI::App *program, Action *chosen) {
  Command command(program, "tune", "sets a camera for a pen");
  const auto options = std::make_shared<TuneOptions>();
  command.option("CAMERA", &options->device, "/dev/videoN").required().value("");
  add_mode_option(&command, &options->mode);
  command.option("--pen", &options->pen_seconds, "waits so long for the pen (default 30)")
      .value("SECONDS")
      .not_negative();
  command.option("--output", &options->output, "settings for track --camera-settings F").value("F");
  command.flag("--undo", &options->undo, "sets the camera as it was before");
  command.flag("--json", &options->json, "one JSON object a line");
  command.example("nox-visuals tune /dev/video0 --output camera.txt");
  command.when_chosen([chosen, options] { *chosen = [options] { return tune(*options); }; });
}

}  // namespace nox::app
