// What is said of the pen that is shown.
#include "nox-visuals/tune/pen_look.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <algorithm>
#include <string>
#include <vector>

#include "nox-visuals/support/camera_model.h"

namespace nox::app {
namespace {

// A camera that is set for a pen: what comes, comes at the levels that it has.
void set_well(CameraModel *camera) {
  for (const auto &[id, value] :
       {std::pair<std::uint32_t, std::int64_t>{V4L2_CID_EXPOSURE_AUTO, V4L2_EXPOSURE_MANUAL},
        {V4L2_CID_EXPOSURE_ABSOLUTE, 100},
        {V4L2_CID_AUTOGAIN, 0},
        {V4L2_CID_GAIN, 32},
        {V4L2_CID_SATURATION, 64}}) {
    camera->control(id).value = value;
  }
}

struct ModelPen {
  int tip = 8;  // its sides, in pixels
  int glow = 36;
  double colour = 90;  // of its glow, in levels
  int step = 6;        // from picture to picture, to the right
  int smear = 0;       // by which the tip is longer in that direction
  double white = 219;
};

// It runs to and fro, a second hovering and a second pressed in turn.
std::vector<ScenePatch> pen_at(const ModelPen &pen, int picture) {
  constexpr int kRun = 30;
  const int phase = picture % (2 * kRun);
  const int at = phase < kRun ? phase : 2 * kRun - phase;
  const int x = 100 + at * pen.step;
  const int y = 120;
  const bool pressed = picture / kRun % 2 == 1;
  const int half = pen.glow / 2;
  const int core = pen.tip / 2;
  return {{x - half, y - half, pen.glow, pen.glow, 60, pressed ? 0 : pen.colour,
           pressed ? pen.colour : 0},
          {x - core - pen.smear / 2, y - core, pen.tip + pen.smear, pen.tip, pen.white, 0, 0}};
}

PenLook look_at(const ModelPen &pen) {
  CameraModel camera;
  set_well(&camera);
  camera.delay = 0;
  const Light without = measure_light(&camera, 5);
  camera.visitors = [&](int picture) { return pen_at(pen, picture); };
  return look_at_pen(&camera, without, 8);
}

std::vector<std::string> lines(const ModelPen &pen) {
  std::vector<std::string> out;
  for (const Finding &finding : findings_of(look_at(pen))) out.push_back(to_line(finding));
  return out;
}

TEST(PenLook, MeasuresAGoodPen) {
  const PenLook look = look_at({});
  EXPECT_GT(look.hovering, 30);
  EXPECT_GT(look.pressed, 30);
  EXPECT_NEAR(look.tip, 8, 1);
  EXPECT_NEAR(look.hovering_glow, 36, 3);
  EXPECT_NEAR(look.pressed_glow, 36, 3);
  EXPECT_NEAR(look.speed, 6, 0.6);
  EXPECT_LE(look.blur, 1);
  for (const Finding &finding : findings_of(look)) EXPECT_EQ(finding.verdict, Verdict::kOk);
}

TEST(PenLook, EndsWhenItHasSeenEnough) {
  EXPECT_LT(look_at({}).pictures, 8 * 30);
}

TEST(PenLook, MeasuresBlurAlongTheWay) {
  ModelPen pen;
  pen.step = 10;
  pen.smear = 8;
  const PenLook look = look_at(pen);
  EXPECT_NEAR(look.blur, 8, 1.5);
  const auto said = lines(pen);
  EXPECT_EQ(said.back().substr(0, 10), "warn blur ") << said.back();
}

TEST(PenLook, ASmallTipAndASmallGlowAreSaid) {
  ModelPen pen;
  pen.tip = 2;
  pen.glow = 8;
  pen.step = 4;
  const auto said = lines(pen);
  ASSERT_GE(said.size(), 3U) << said.front();
  EXPECT_EQ(said[1].substr(0, 9), "warn tip ") << said[1];
  EXPECT_EQ(said[2].substr(0, 15), "warn blue-glow ") << said[2];
}

TEST(PenLook, TellsWhyThereIsNoPen) {
  ModelPen off;
  off.white = 60;
  off.colour = 0;
  EXPECT_EQ(lines(off).front().substr(0, 60),
            "warn pen was not seen: nothing bright or strongly coloured c");
  ModelPen dark;
  dark.white = 100;
  EXPECT_NE(lines(dark).front().find("its tip is too dark"), std::string::npos);
  ModelPen pale;
  pale.colour = 30;
  EXPECT_NE(lines(pale).front().find("its glow is too pale"), std::string::npos);
  ModelPen large;
  large.tip = 40;
  large.glow = 80;
  EXPECT_NE(lines(large).front().find("no small bright tip"), std::string::npos);
}

}  // namespace
}  // namespace nox::app
