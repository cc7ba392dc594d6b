// The tuner with a model of a camera: what it sets, what it says, and that it gives up well.
#include "nox-visuals/tune/tuner.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "nox-visuals/errors.h"
#include "nox-visuals/support/camera_model.h"

namespace nox::app {
namespace {

using Lines = std::vector<std::string>;

// A wall that reaches 170 at an exposure of (170 - 16) / 220 of the normal one.
const ScenePatch kWall = {100, 40, 200, 150, 220, 0, 0};
constexpr std::int64_t kWallExposure = 70;

// A pullover with a button, which the tracker takes for a pen as soon as its blue reaches 170.
ScenePatch pullover(double blue) {
  return {200, 100, 60, 60, 40, blue, 0};
}
const ScenePatch kButton = {226, 126, 8, 8, 600, 0, 0};

class TunerTest : public testing::Test {
 protected:
  TunerTest()
      : undo_(std::filesystem::path(testing::TempDir()) /
              (testing::UnitTest::GetInstance()->current_test_info()->name() +
               std::string("-undo"))) {
    std::filesystem::remove(undo_);
  }
  ~TunerTest() override { std::filesystem::remove(undo_); }

  // Sets the camera and says what was found, as lines.
  Lines tune(bool keep = true) {
    SettingsGuard guard(&camera_, undo_);
    Lines lines;
    Tuner tuner(&camera_, &guard, &camera_, 30,
                [&](const Finding &finding) { lines.push_back(to_line(finding)); });
    tuner.set_camera();
    if (keep) guard.keep();
    return lines;
  }

  std::int64_t value(std::uint32_t id) { return camera_.control(id).value; }

  // A camera that offers no exposure by hand.
  void make_exposure_automatic() {
    camera_.control(V4L2_CID_EXPOSURE_AUTO).choices = {V4L2_EXPOSURE_AUTO};
  }

  CameraModel camera_;
  std::string undo_;
};

bool has(const Lines &lines, const std::string &start) {
  return std::any_of(lines.begin(), lines.end(),
                     [&](const std::string &line) { return line.starts_with(start); });
}

std::string all(const Lines &lines) {
  std::string text;
  for (const std::string &line : lines) text += line + "\n";
  return text;
}

TEST_F(TunerTest, FixesWhatIsAutomaticAndFindsTheLongestDarkExposure) {
  camera_.scene = {kWall};
  const Lines lines = tune();
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_AUTO), V4L2_EXPOSURE_MANUAL);
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_AUTO_PRIORITY), 0);
  EXPECT_EQ(value(V4L2_CID_AUTO_WHITE_BALANCE), 0);
  EXPECT_EQ(value(V4L2_CID_AUTOGAIN), 0);
  EXPECT_EQ(value(V4L2_CID_GAIN), 32);
  EXPECT_EQ(value(V4L2_CID_SATURATION), 64);
  EXPECT_GE(value(V4L2_CID_EXPOSURE_ABSOLUTE), kWallExposure * 9 / 10) << all(lines);
  EXPECT_LE(value(V4L2_CID_EXPOSURE_ABSOLUTE), kWallExposure) << all(lines);
  EXPECT_TRUE(has(lines, "ok   exposure ")) << all(lines);
  EXPECT_TRUE(has(lines, "ok   white-balance fixed"));
  EXPECT_TRUE(has(lines, "ok   false-pens none"));
}

TEST_F(TunerTest, ADarkRoomGetsTheTimeOfAFrame) {
  const Lines lines = tune();
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_ABSOLUTE), 333);
  EXPECT_TRUE(has(lines, "ok   exposure 333 (33.3 ms), the longest, none at 170")) << all(lines);
}

TEST_F(TunerTest, ALampThatIsAlwaysBrightIsSaid) {
  camera_.scene = {{10, 10, 100, 80, 90000, 0, 0}};
  const Lines lines = tune();
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_ABSOLUTE), 3);
  EXPECT_TRUE(has(lines, "warn exposure 3 (0.3 ms), the shortest, leaves 7 % at 170"))
      << all(lines);
}

TEST_F(TunerTest, WaitsForPicturesThatComeLater) {
  camera_.scene = {kWall};
  camera_.delay = 7;
  const Lines lines = tune();
  EXPECT_GE(value(V4L2_CID_EXPOSURE_ABSOLUTE), kWallExposure * 9 / 10) << all(lines);
  EXPECT_LE(value(V4L2_CID_EXPOSURE_ABSOLUTE), kWallExposure) << all(lines);
}

TEST_F(TunerTest, TakesTheCoarseStepsThatTheCameraMakes) {
  camera_.scene = {kWall};
  camera_.takes[V4L2_CID_EXPOSURE_ABSOLUTE] = [](std::int64_t value) {
    return std::max<std::int64_t>(3, value / 20 * 20);
  };
  const Lines lines = tune();
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_ABSOLUTE), 60) << all(lines);
}

TEST_F(TunerTest, SaysThatAnExposureLies) {
  camera_.scene = {kWall};
  camera_.control(V4L2_CID_EXPOSURE_AUTO).value = V4L2_EXPOSURE_MANUAL;
  camera_.liars = {V4L2_CID_EXPOSURE_ABSOLUTE};
  const Lines lines = tune();
  EXPECT_TRUE(has(lines, "warn exposure the camera says that it follows, but its pictures do not"))
      << all(lines);
}

TEST_F(TunerTest, SaysThatAnExposureDoesNotStick) {
  camera_.scene = {kWall};
  camera_.takes[V4L2_CID_EXPOSURE_ABSOLUTE] = [](std::int64_t) { return 157; };
  const Lines lines = tune();
  EXPECT_TRUE(has(lines, "warn exposure the camera keeps 157")) << all(lines);
}

TEST_F(TunerTest, ACameraWithoutManualExposureIsSaidAndTheRestIsSet) {
  make_exposure_automatic();
  const Lines lines = tune();
  EXPECT_TRUE(has(lines, "warn exposure cannot be set by hand on this camera")) << all(lines);
  EXPECT_EQ(value(V4L2_CID_AUTO_WHITE_BALANCE), 0);
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_AUTO), V4L2_EXPOSURE_APERTURE_PRIORITY);
}

TEST_F(TunerTest, ACameraWithoutControlsIsSaid) {
  camera_.all_controls.clear();
  const Lines lines = tune();
  EXPECT_TRUE(has(lines, "warn controls this camera has none")) << all(lines);
  EXPECT_TRUE(has(lines, "warn exposure cannot be set by hand on this camera")) << all(lines);
  EXPECT_TRUE(has(lines, "ok   false-pens none"));
  EXPECT_EQ(camera_.changes(), 0);
}

TEST_F(TunerTest, ReadOnlySettingsAreSaidAndLeft) {
  camera_.control(V4L2_CID_AUTO_WHITE_BALANCE).flags = V4L2_CTRL_FLAG_READ_ONLY;
  const Lines lines = tune();
  EXPECT_TRUE(has(lines,
                  "warn white-balance automatic: it takes the glow for the light, and cannot "
                  "be set"))
      << all(lines);
  EXPECT_EQ(value(V4L2_CID_AUTO_WHITE_BALANCE), 1);
}

TEST_F(TunerTest, ARefusedSettingIsSaid) {
  camera_.takes[V4L2_CID_AUTOGAIN] = [](std::int64_t) { return std::nullopt; };
  EXPECT_TRUE(has(tune(), "warn gain the camera keeps 1 and not 0"));
}

TEST_F(TunerTest, LowersTheSaturationUntilAPulloverIsNoPen) {
  make_exposure_automatic();
  camera_.scene = {pullover(18), kButton};
  const Lines lines = tune();
  EXPECT_TRUE(has(lines, "ok   false-pens none, with the saturation at ")) << all(lines);
  EXPECT_LT(value(V4L2_CID_SATURATION), 64);
  EXPECT_GE(value(V4L2_CID_SATURATION), 32);
}

TEST_F(TunerTest, SetsTheSaturationBackWhereItDoesNotHelp) {
  make_exposure_automatic();
  camera_.scene = {pullover(45), kButton};
  const Lines lines = tune();
  EXPECT_TRUE(has(lines,
                  "warn false-pens something is taken for a pen at 51 % of the width and 52 % "
                  "of the height, with less saturation too"))
      << all(lines);
  EXPECT_EQ(value(V4L2_CID_SATURATION), 64);
}

TEST_F(TunerTest, WhatIsNotKeptIsTakenBack) {
  camera_.scene = {kWall};
  const auto before = camera_.controls();
  const auto mode = camera_.mode();
  tune(false);
  EXPECT_GT(camera_.changes(), 10);
  const auto after = camera_.controls();
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(after[i].value, before[i].value) << before[i].name;
  }
  EXPECT_EQ(camera_.mode(), mode);
  EXPECT_FALSE(std::filesystem::exists(undo_));
}

TEST_F(TunerTest, ACameraThatIsPulledOutCanBeUndoneWhenItIsBack) {
  camera_.scene = {kWall};
  const auto before = camera_.controls();
  camera_.gone_at = 120;
  EXPECT_THROW(tune(), StreamError);
  EXPECT_TRUE(std::filesystem::exists(undo_));
  camera_.gone_at.reset();
  EXPECT_EQ(value(V4L2_CID_EXPOSURE_AUTO), V4L2_EXPOSURE_MANUAL);
  EXPECT_EQ(undo_settings(&camera_, undo_), Lines());
  const auto after = camera_.controls();
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(after[i].value, before[i].value) << before[i].name;
  }
}

}  // namespace
}  // namespace nox::app
