// Which mode is taken, and how people name one.
#include "nox-visuals/camera/mode_choice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

std::string chosen(const std::vector<CameraMode> &modes) {
  const auto mode = choose_mode(modes);
  return mode ? mode_text(*mode) : "none";
}

TEST(ModeChoice, TheFastestWins) {
  EXPECT_EQ(chosen({{"YUYV", 640, 480, 30}, {"MJPG", 1920, 1080, 60}, {"YUYV", 640, 480, 15}}),
            "MJPG 1920x1080 at 60");
}

TEST(ModeChoice, SmallerThanTheTrackersPictureDoesNotCount) {
  EXPECT_EQ(chosen({{"YUYV", 320, 240, 120}, {"YUYV", 640, 480, 30}}), "YUYV 640x480 at 30");
  EXPECT_EQ(chosen({{"YUYV", 447, 252, 30}, {"YUYV", 448, 251, 30}}), "none");
  EXPECT_EQ(chosen({{"YUYV", 448, 252, 30}}), "YUYV 448x252 at 30");
  EXPECT_EQ(chosen({}), "none");
}

TEST(ModeChoice, RawComesBeforeMjpeg) {
  EXPECT_EQ(chosen({{"MJPG", 640, 360, 30}, {"NV12", 1280, 720, 30}}), "NV12 1280x720 at 30");
  EXPECT_EQ(chosen({{"YUYV", 640, 360, 30}, {"MJPG", 640, 360, 30}}), "YUYV 640x360 at 30");
}

TEST(ModeChoice, ThenTheSensorsAspectThenTheSmallest) {
  const std::vector<CameraMode> modes = {{"YUYV", 640, 480, 30},
                                         {"YUYV", 1280, 720, 30},
                                         {"YUYV", 848, 480, 30},
                                         {"MJPG", 1920, 1080, 30}};
  EXPECT_EQ(chosen(modes), "YUYV 848x480 at 30");
  EXPECT_EQ(chosen({{"YUYV", 640, 480, 30}, {"YUYV", 1280, 960, 30}, {"YUYV", 640, 360, 30}}),
            "YUYV 640x480 at 30");
}

TEST(ModeChoice, RatesOfTelevisionAreNoSlower) {
  EXPECT_EQ(chosen({{"MJPG", 640, 480, 30}, {"YUYV", 640, 480, 30000.0 / 1001}}),
            "YUYV 640x480 at 29.97");
}

TEST(ModeChoice, GrayAndUnknownFormatsDoNotServe) {
  EXPECT_EQ(chosen({{"GREY", 640, 480, 60}, {"H264", 640, 480, 60}, {"BA81", 640, 480, 60}}),
            "none");
}

TEST(ModeChoice, ModesAreNamedBySizeAndRate) {
  const auto mode = parse_mode("640x480@29.97");
  ASSERT_TRUE(mode);
  EXPECT_EQ(mode->width, 640U);
  EXPECT_EQ(mode->height, 480U);
  EXPECT_DOUBLE_EQ(mode->rate, 29.97);
  ASSERT_TRUE(parse_mode("1280x720"));
  EXPECT_EQ(parse_mode("1280x720")->rate, 0);
  for (const char *wrong : {"", "640", "640x", "640x480@", "640x480@x", "640x480@30x", "0x480@30",
                            "640x480@0", "640x480@-30", "640x480 30", "640x480@nan"}) {
    EXPECT_FALSE(parse_mode(wrong)) << wrong;
  }
}

TEST(ModeChoice, WhatIsWantedMustBeThere) {
  const std::vector<CameraMode> modes = {
      {"MJPG", 1280, 720, 60}, {"MJPG", 640, 480, 30}, {"YUYV", 640, 480, 30}};
  EXPECT_EQ(mode_text(*pick_mode(modes, WantedMode{640, 480, 30})), "YUYV 640x480 at 30");
  EXPECT_EQ(mode_text(*pick_mode(modes, WantedMode{1280, 720, 0})), "MJPG 1280x720 at 60");
  EXPECT_EQ(mode_text(*pick_mode(modes, {})), "MJPG 1280x720 at 60");
  try {
    pick_mode(modes, WantedMode{1280, 720, 30});
    FAIL();
  } catch (const StreamError &error) {
    EXPECT_STREQ(error.what(), "the camera has no mode 1280x720@30; it has 1280x720@60 640x480@30");
  }
}

}  // namespace
}  // namespace nox::app
