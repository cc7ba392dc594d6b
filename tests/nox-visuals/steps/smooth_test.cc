#include "nox-visuals/steps/smooth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "nox-visuals/support/recorded.h"

namespace nox::app {
namespace {

using recorded::loss;
using recorded::pen;

// The paper's algorithm, line by line, with every value kept:
//   te = 1 / rate, tau = 1 / (2 pi fc), alpha = 1 / (1 + tau / te)
//   dx = (x - hatx_prev) rate, edx = alpha(dcutoff) dx + (1 - alpha) edx_prev
//   fc = mincutoff + beta |edx|, hatx = alpha(fc) x + (1 - alpha) hatx_prev
std::vector<double> by_the_paper(const std::vector<double> &times,
                                 const std::vector<double> &values,
                                 const OneEuroConstants &constants) {
  const auto alpha = [](double cutoff, double te) {
    const double tau = 1.0 / (2.0 * std::numbers::pi * cutoff);
    return 1.0 / (1.0 + tau / te);
  };
  std::vector<double> hatx{values[0]};
  std::vector<double> edx{0.0};
  for (std::size_t i = 1; i < values.size(); ++i) {
    const double te = times[i] - times[i - 1];
    const double dx = (values[i] - hatx[i - 1]) / te;
    const double ad = alpha(constants.derivative_cutoff, te);
    edx.push_back(ad * dx + (1.0 - ad) * edx[i - 1]);
    const double a = alpha(constants.min_cutoff + constants.beta * std::abs(edx[i]), te);
    hatx.push_back(a * values[i] + (1.0 - a) * hatx[i - 1]);
  }
  return hatx;
}

std::int64_t ns(double seconds) {
  return std::llround(seconds * 1e9);
}

// As the authors' reference data is made: ten seconds of a sine at 120 Hz with noise.
TEST(OneEuroFilterTest, FollowsTheFormula) {
  std::mt19937 random(20120505);
  std::uniform_real_distribution<double> noise(-0.1, 0.1);
  std::vector<double> times;
  std::vector<double> values;
  for (int i = 0; i < 1200; ++i) {
    times.push_back(static_cast<double>(ns(i / 120.0)) / 1e9);
    values.push_back(std::sin(times.back()) + noise(random));
  }
  for (const OneEuroConstants constants :
       {OneEuroConstants{1.0, 0.1, 1.0}, kSmoothing, OneEuroConstants{0.5, 0.0, 1.0}}) {
    OneEuroFilter filter(constants);
    const std::vector<double> expected = by_the_paper(times, values, constants);
    for (std::size_t i = 0; i < values.size(); ++i) {
      ASSERT_NEAR(filter.filter(values[i], ns(times[i])), expected[i], 1e-9) << i;
    }
  }
}

TEST(OneEuroFilterTest, FollowsTheFormulaWithUnevenSteps) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> step(0.001, 0.2);
  std::vector<double> times{0.0};
  std::vector<double> values{0.3};
  for (int i = 1; i < 1000; ++i) {
    times.push_back(static_cast<double>(ns(times.back() + step(random))) / 1e9);
    values.push_back(std::fmod(values.back() + step(random), 1.0));
  }
  OneEuroFilter filter(kSmoothing);
  const std::vector<double> expected = by_the_paper(times, values, kSmoothing);
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_NEAR(filter.filter(values[i], ns(times[i])), expected[i], 1e-9) << i;
  }
}

// A camera may give two frames one time stamp, and a stream that starts anew jumps back.
TEST(OneEuroFilterTest, TimeThatStandsStillOrGoesBackIsAStepLikeTheLast) {
  OneEuroFilter filter(kSmoothing);
  OneEuroFilter even(kSmoothing);
  double value = 0;
  double expected = 0;
  for (const auto &[x, time, step] :
       {std::tuple{0.1, 1.0, 1.0}, {0.2, 1.5, 1.5}, {0.3, 1.5, 2.0}, {0.5, 0.2, 2.5}}) {
    value = filter.filter(x, ns(time));
    expected = even.filter(x, ns(step));
    EXPECT_DOUBLE_EQ(value, expected);
  }
}

std::vector<Pen> smoothed(Smooth *smooth, const std::vector<Observation> &in) {
  std::vector<Observation> out;
  for (const Observation &it : in) smooth->take(it, &out);
  EXPECT_EQ(out.size(), in.size());
  std::vector<Pen> pens;
  for (const Observation &it : out) {
    if (const auto *seen = std::get_if<Pen>(&it)) pens.push_back(*seen);
  }
  return pens;
}

TEST(SmoothTest, APenAtRestStaysWhereItIs) {
  Smooth smooth(kSmoothing);
  std::vector<Observation> in;
  for (int i = 0; i < 30; ++i) in.push_back(pen(i / 30.0, 0.3, 0.7, true));
  for (const Pen &seen : smoothed(&smooth, in)) {
    EXPECT_DOUBLE_EQ(seen.at.x, 0.3);
    EXPECT_DOUBLE_EQ(seen.at.y, 0.7);
  }
}

TEST(SmoothTest, TheSameWayInWidthsIsSmoothedTheSameOnBothAxes) {
  Smooth smooth(kSmoothing);
  std::vector<Observation> in;
  for (int i = 0; i < 30; ++i) {
    const double way = 0.1 * std::sin(i * 1.3);
    in.push_back(pen(i / 30.0, 0.5 + way, 0.5 + way * 448.0 / 252.0, false));
  }
  for (const Pen &seen : smoothed(&smooth, in)) {
    EXPECT_NEAR((seen.at.y - 0.5) * 252.0 / 448.0, seen.at.x - 0.5, 1e-12);
  }
}

TEST(SmoothTest, ALossStartsAnewAndAPressDoesNot) {
  Smooth smooth(kSmoothing);
  const std::vector<Pen> pens =
      smoothed(&smooth, {pen(0.0, 0.1, 0.1, false), pen(0.03, 0.12, 0.1, true), loss(0.07, true),
                         pen(0.1, 0.9, 0.9, false)});
  ASSERT_EQ(pens.size(), 3U);
  EXPECT_GT(pens[1].at.x, 0.1);
  EXPECT_LT(pens[1].at.x, 0.12);
  EXPECT_DOUBLE_EQ(pens[2].at.x, 0.9);
  EXPECT_DOUBLE_EQ(pens[2].at.y, 0.9);
}

TEST(SmoothTest, WhatTheEventSaidStays) {
  Smooth smooth(kSmoothing);
  const std::vector<Pen> pens =
      smoothed(&smooth, {pen(0.0, 0.25, 0.25, false), pen(0.03, 0.5, 0.5, true, 3)});
  EXPECT_EQ(pens[1].raw[0], 0.5F);
  EXPECT_EQ(pens[1].raw[1], 0.5F);
  EXPECT_TRUE(pens[1].pressed);
  EXPECT_EQ(pens[1].stroke, 3U);
}

}  // namespace
}  // namespace nox::app
