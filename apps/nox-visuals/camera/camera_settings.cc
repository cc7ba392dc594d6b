#include "nox-visuals/camera/camera_settings.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

#include "nox-visuals/camera/mode_choice.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/whole_file.h"

namespace nox::app {
namespace {

constexpr const char *kCamera = "camera";
constexpr const char *kMode = "mode";

std::string trimmed(const std::string &text) {
  constexpr const char *kBlank = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

// "640x480@30 YUYV"
CameraMode parse_file_mode(const std::string &text) {
  const std::size_t blank = text.find(' ');
  const auto wanted = parse_mode(text.substr(0, blank));
  if (!wanted) throw UsageError("expected mode = WIDTHxHEIGHT@RATE FORMAT");
  const std::string format = blank == std::string::npos ? "" : trimmed(text.substr(blank));
  if (format.size() != 4) throw UsageError("a format has four characters, not '" + format + "'");
  return {format, wanted->width, wanted->height, wanted->rate};
}

std::int64_t parse_value(const std::string &text) {
  std::int64_t value = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end.ec != std::errc() || end.ptr != text.data() + text.size() || text.empty()) {
    throw UsageError("a setting is a whole number, not '" + text + "'");
  }
  return value;
}

void parse_line(const std::string &line, CameraSettings *settings) {
  if (line.empty() || line.front() == '#') return;
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) throw UsageError("expected name = value");
  const std::string name = trimmed(line.substr(0, equals));
  const std::string value = trimmed(line.substr(equals + 1));
  if (name == kCamera) {
    settings->camera = value;
  } else if (name == kMode) {
    settings->mode = parse_file_mode(value);
  } else {
    settings->controls.push_back({name, parse_value(value)});
  }
}

std::string to_text(const CameraSettings &settings) {
  std::string text = "# A camera's settings, for nox-visuals track --camera-settings.\n";
  text += std::string(kCamera) + " = " + settings.camera + "\n";
  if (settings.mode) {
    text += std::string(kMode) + " = " + mode_word(*settings.mode) + " " + settings.mode->format;
    text += "\n";
  }
  for (const CameraSetting &it : settings.controls) {
    text += it.name + " = " + std::to_string(it.value) + "\n";
  }
  return text;
}

void write_all(int descriptor, std::string_view text, const std::string &path) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw OutputError(path + ": " + std::strerror(errno));
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

// "" when nothing is wrong.
std::string complaint(const CameraSetting &setting, const CameraControl *now) {
  const std::string wanted = setting.name + " = " + std::to_string(setting.value) + ": ";
  if (now == nullptr) return wanted + "the camera has no such setting";
  if (now->value == setting.value || !is_active(*now)) return "";
  return wanted + "the camera has " + std::to_string(now->value);
}

}  // namespace

CameraSettings read_camera_settings(const std::string &path) {
  std::ifstream file(path);
  if (!file) throw UsageError(path + ": " + std::strerror(errno));
  CameraSettings settings;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    try {
      parse_line(trimmed(line), &settings);
    } catch (const UsageError &error) {
      throw UsageError(path + ":" + std::to_string(number) + ": " + error.what());
    }
  }
  return settings;
}

void write_camera_settings(const CameraSettings &settings, const std::string &path) {
  WholeFile file(path);
  write_all(file.descriptor(), to_text(settings), path);
  file.keep();
}

std::vector<std::string> complaints_about(const CameraSettings &settings, const Camera &camera) {
  const auto controls = camera.controls();
  std::vector<std::string> complaints;
  for (const CameraSetting &setting : settings.controls) {
    std::string wrong = complaint(setting, find_control(controls, setting.name));
    if (!wrong.empty()) complaints.push_back(std::move(wrong));
  }
  return complaints;
}

}  // namespace nox::app
