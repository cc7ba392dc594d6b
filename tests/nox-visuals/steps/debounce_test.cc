#include "nox-visuals/steps/debounce.h"

#include <gtest/gtest.h>

#include "nox-visuals/support/recorded.h"

namespace nox::app {
namespace {

using recorded::loss;
using recorded::pen;

constexpr std::int64_t kMs = 1'000'000;

// A frame every 20 ms: 'p' pressed, 'h' hovering, '-' lost. What comes out, in the same letters.
std::string run(Debounce *debounce, const std::string &frames) {
  std::string told;
  bool pressed = false;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const double now = 0.02 * static_cast<double>(i);
    std::vector<Observation> out;
    if (frames[i] == '-') {
      debounce->take(loss(now, pressed), &out);
    } else {
      pressed = frames[i] == 'p';
      debounce->take(pen(now, 0.5, 0.5, pressed), &out);
    }
    EXPECT_EQ(out.size(), 1U);
    if (const auto *seen = std::get_if<Pen>(&out.front())) told += seen->pressed ? 'p' : 'h';
    if (const auto *gone = std::get_if<Loss>(&out.front())) told += gone->pressed ? 'P' : 'H';
  }
  return told;
}

TEST(DebounceTest, AChangeCountsWhenItHasLasted) {
  Debounce debounce(60 * kMs);
  EXPECT_EQ(run(&debounce, "hhhppppphhhhhh"), "hhhhhhppppphhh");
}

TEST(DebounceTest, WhatDoesNotLastIsLeftOut) {
  Debounce debounce(60 * kMs);
  EXPECT_EQ(run(&debounce, "hphpphppphhppppphpphppphh"), "hhhhhhhhhhhhhhppppppppppp");
}

TEST(DebounceTest, TheFirstFrameOfAPenIsBelieved) {
  Debounce debounce(60 * kMs);
  EXPECT_EQ(run(&debounce, "pph-hhp"), "pppPhhh");
}

TEST(DebounceTest, AChangeBeforeALossDoesNotCountAfterIt) {
  Debounce debounce(60 * kMs);
  EXPECT_EQ(run(&debounce, "hpp-hpphhhpppp"), "hhhHhhhhhhhhhp");
}

TEST(DebounceTest, PlacesAndTimesStay) {
  Debounce debounce(60 * kMs);
  std::vector<Observation> out;
  debounce.take(pen(1.5, 0.25, 0.75, false, 7), &out);
  debounce.take(recorded::code(1.6, "x"), &out);
  debounce.take(End{}, &out);
  ASSERT_EQ(out.size(), 3U);
  const auto &seen = std::get<Pen>(out[0]);
  EXPECT_EQ(seen.at.x, 0.25);
  EXPECT_EQ(seen.at.y, 0.75);
  EXPECT_EQ(seen.when.pts_ns, 1'500'000'000);
  EXPECT_EQ(seen.stroke, 7U);
  EXPECT_TRUE(std::holds_alternative<Code>(out[1]));
  EXPECT_TRUE(std::holds_alternative<End>(out[2]));
}

}  // namespace
}  // namespace nox::app
