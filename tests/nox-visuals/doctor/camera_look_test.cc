// What the doctor says of cameras: settings that a test makes up, as drivers tell them.
#include "nox-visuals/doctor/camera_look.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "nox-visuals/camera/v4l2_camera.h"

namespace nox::app {
namespace {

class FakeCamera : public Camera {
 public:
  FakeCamera(std::vector<CameraMode> modes, std::vector<CameraControl> controls)
      : modes_(std::move(modes)), controls_(std::move(controls)) {}

  std::string identity() const override { return "a camera"; }
  std::vector<CameraMode> modes() const override { return modes_; }
  std::optional<CameraMode> mode() const override { return {}; }
  std::vector<CameraControl> controls() const override { return controls_; }
  // Who only looks sets nothing.
  bool set(std::uint32_t, std::int64_t) override { throw std::logic_error("set"); }
  bool set_mode(const CameraMode &) override { throw std::logic_error("set"); }

 private:
  std::vector<CameraMode> modes_;
  std::vector<CameraControl> controls_;
};

CameraControl control(std::uint32_t id, const char *name, std::int64_t value) {
  return {id, name, V4L2_CTRL_TYPE_INTEGER, 0, 0, 2047, 1, 250, value, {0, 1, 2, 3}};
}

const std::vector<CameraMode> kModes = {
    {"YUYV", 320, 240, 60}, {"YUYV", 640, 480, 30}, {"MJPG", 1920, 1080, 15}};

std::vector<std::string> lines(const Camera &camera, std::optional<double> bright = {}) {
  std::vector<std::string> out;
  for (const Finding &finding : look_at_camera(camera, "/dev/video3", bright)) {
    out.push_back(to_line(finding));
  }
  return out;
}

bool has_line(const std::vector<std::string> &lines, const std::string &line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST(CameraLook, SaysHowToSetWhatIsAutomatic) {
  const FakeCamera camera(
      kModes, {control(V4L2_CID_EXPOSURE_AUTO, "auto_exposure", V4L2_EXPOSURE_APERTURE_PRIORITY),
               control(V4L2_CID_EXPOSURE_ABSOLUTE, "exposure_time_absolute", 157),
               control(V4L2_CID_AUTO_WHITE_BALANCE, "white_balance_automatic", 1),
               control(V4L2_CID_EXPOSURE_AUTO_PRIORITY, "exposure_dynamic_framerate", 1),
               control(V4L2_CID_SATURATION, "saturation", 300)});
  const auto said = lines(camera, 0.31);
  EXPECT_TRUE(has_line(said,
                       "warn exposure automatic, 31 % above 170; try: nox-visuals tune "
                       "/dev/video3"));
  EXPECT_TRUE(has_line(said,
                       "warn white-balance automatic: it takes the glow for the light; try: "
                       "v4l2-ctl -d /dev/video3 -c white_balance_automatic=0"));
  EXPECT_TRUE(has_line(said,
                       "warn frame-rate falls in the dark; try: v4l2-ctl -d /dev/video3 -c "
                       "exposure_dynamic_framerate=0"));
  EXPECT_TRUE(has_line(said,
                       "warn saturation above the driver's default: clothes become pens; try: "
                       "v4l2-ctl -d /dev/video3 -c saturation=250"));
}

TEST(CameraLook, IsContentWithAFixedCamera) {
  const FakeCamera camera(kModes,
                          {control(V4L2_CID_EXPOSURE_AUTO, "auto_exposure", V4L2_EXPOSURE_MANUAL),
                           control(V4L2_CID_EXPOSURE_ABSOLUTE, "exposure_time_absolute", 30),
                           control(V4L2_CID_AUTO_WHITE_BALANCE, "white_balance_automatic", 0),
                           control(V4L2_CID_AUTOGAIN, "gain_automatic", 0),
                           control(V4L2_CID_SATURATION, "saturation", 250)});
  EXPECT_EQ(lines(camera),
            (std::vector<std::string>{"ok   modes 3 modes, best YUYV 640x480 at 30 frames a second",
                                      "ok   exposure manual", "ok   white-balance fixed",
                                      "ok   gain fixed",
                                      "ok   saturation not above the driver's default"}));
}

TEST(CameraLook, ACameraWithoutControlsIsSaidToHaveNone) {
  const auto said = lines(FakeCamera(kModes, {}));
  EXPECT_TRUE(has_line(said, "warn exposure cannot be set on this camera; try: a darker room"));
  EXPECT_EQ(said.size(), 2U);
}

TEST(CameraLook, ModesBelowTheWorkSizeDoNotCount) {
  const auto of_modes = [](std::vector<CameraMode> modes) {
    return lines(FakeCamera(std::move(modes), {})).front();
  };
  EXPECT_EQ(of_modes({}), "warn modes the camera lists none");
  EXPECT_EQ(of_modes({{"YUYV", 320, 240, 60}, {"YUYV", 447, 252, 60}}),
            "warn modes 2 modes, none in colour of at least 448x252; try: another camera");
  EXPECT_EQ(of_modes({{"MJPG", 1920, 1080, 15}}),
            "warn modes 1 modes, best MJPG 1920x1080 at 15 frames a second; try: a camera with "
            "30 frames a second or more");
}

TEST(V4l2Camera, NamesControlsAsItsToolsDo) {
  EXPECT_EQ(control_name("Exposure, Auto"), "exposure_auto");
  EXPECT_EQ(control_name("White Balance, Automatic"), "white_balance_automatic");
  EXPECT_EQ(control_name("Gain (dB)"), "gain_db");
}

}  // namespace
}  // namespace nox::app
