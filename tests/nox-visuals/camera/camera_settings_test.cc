// Files of settings: what goes in comes out, and what is broken is named.
#include "nox-visuals/camera/camera_settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "nox-visuals/errors.h"
#include "nox-visuals/outputs/output_error.h"

namespace nox::app {
namespace {

std::string path_of(const char *name) {
  return std::filesystem::path(testing::TempDir()) / name;
}

CameraSettings read_text(const std::string &text) {
  const std::string path = path_of("settings-read");
  std::ofstream(path) << text;
  return read_camera_settings(path);
}

std::string complaint_of(const std::string &text) {
  try {
    read_text(text);
  } catch (const UsageError &error) {
    const std::string what = error.what();
    return what.substr(what.find("settings-read") + 13);
  }
  return "";
}

TEST(CameraSettings, ComeBackAsTheyWere) {
  CameraSettings settings;
  settings.camera = "uvcvideo A = camera: usb-0000:00:14.0-1";
  settings.mode = CameraMode{"YUYV", 640, 480, 30};
  settings.controls = {{"auto_exposure", 1}, {"exposure_time_absolute", 31}, {"hue", -20}};
  const std::string path = path_of("settings-written");
  write_camera_settings(settings, path);
  const CameraSettings read = read_camera_settings(path);
  EXPECT_EQ(read.camera, settings.camera);
  EXPECT_EQ(read.mode, settings.mode);
  EXPECT_EQ(read.controls, settings.controls);
}

TEST(CameraSettings, BlankLinesAndCommentsAreLeftOut) {
  const CameraSettings settings = read_text("# mine\n\n  gain =  12 \r\n");
  EXPECT_EQ(settings.controls, (std::vector<CameraSetting>{{"gain", 12}}));
  EXPECT_FALSE(settings.mode);
}

TEST(CameraSettings, WhatIsBrokenIsNamedWithItsLine) {
  EXPECT_EQ(complaint_of("gain = 1\ngain 12\n"), ":2: expected name = value");
  EXPECT_EQ(complaint_of("gain = bright\n"), ":1: a setting is a whole number, not 'bright'");
  EXPECT_EQ(complaint_of("gain =\n"), ":1: a setting is a whole number, not ''");
  EXPECT_EQ(complaint_of("mode = fast\n"), ":1: expected mode = WIDTHxHEIGHT@RATE FORMAT");
  EXPECT_EQ(complaint_of("mode = 640x480@30\n"), ":1: a format has four characters, not ''");
}

TEST(CameraSettings, FilesThatAreNotThereAreNamed) {
  EXPECT_THROW(read_camera_settings("/nowhere/settings"), UsageError);
  EXPECT_THROW(write_camera_settings({}, "/nowhere/settings"), OutputError);
}

}  // namespace
}  // namespace nox::app
