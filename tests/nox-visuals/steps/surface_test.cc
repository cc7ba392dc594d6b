#include "nox-visuals/steps/surface.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using nox::app::Loss;
using nox::app::Observation;
using nox::app::Pen;
using nox::app::Point;
using nox::app::SurfaceStep;

Point place(float x, float y, bool mirrored) {
  SurfaceStep step(mirrored);
  std::vector<Observation> out;
  step.take(Pen{{}, {}, true, {x, y}, 0}, &out);
  return std::get<Pen>(out.at(0)).at;
}

TEST(Surface, CentresOfTheTrackersSamples) {
  // The top right sample of the picture, and the bottom left one.
  EXPECT_DOUBLE_EQ(place(0, 0, false).x, 447.5 / 448);
  EXPECT_DOUBLE_EQ(place(0, 0, false).y, 0.5 / 252);
  EXPECT_DOUBLE_EQ(place(0.5F, 0.5F, false).x, 223.5 / 448);
  EXPECT_DOUBLE_EQ(place(0.5F, 0.5F, false).y, 126.5 / 252);
}

TEST(Surface, ACameraBehindItSeesLeftAndRightExchanged) {
  EXPECT_NEAR(place(0, 0.5F, true).x, 0.5 / 448, 1e-12);
  EXPECT_DOUBLE_EQ(place(0, 0.5F, true).y, place(0, 0.5F, false).y);
}

TEST(Surface, OthersPass) {
  SurfaceStep step(false);
  std::vector<Observation> out;
  step.take(Loss{{}, true}, &out);
  EXPECT_TRUE(std::get<Loss>(out.at(0)).pressed);
}

}  // namespace
