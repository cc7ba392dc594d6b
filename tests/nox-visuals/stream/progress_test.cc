#include "nox-visuals/stream/progress.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using nox::app::progress_line;
using nox::app::ProgressState;

TEST(Progress, OfAFileABarTheRateAndTheTimeLeft) {
  EXPECT_EQ(progress_line({300, 0, 10, 0.25}, 60),
            "[#######.....................]  25 %, 30 frames/s, 0:30 left");
}

TEST(Progress, OfAStreamCounts) {
  EXPECT_EQ(progress_line({300, 0, 10, {}}, 79), "300 frames, 30 frames/s");
  EXPECT_EQ(progress_line({300, 4, 10, {}}, 79), "300 frames, 30 frames/s, 4 dropped");
}

TEST(Progress, LongTimesHaveHours) {
  EXPECT_NE(progress_line({1, 0, 3600, 0.5}, 79).find("1:00:00 left"), std::string::npos);
}

TEST(Progress, ANarrowTerminalHasNoBar) {
  EXPECT_EQ(progress_line({300, 0, 10, 0.25}, 34), " 25 %, 30 frames/s, 0:30 left");
}

TEST(Progress, NeverWiderThanTheTerminal) {
  for (int columns = 0; columns < 200; ++columns) {
    for (const auto part : {std::optional<double>(), std::optional(0.0), std::optional(1.0)}) {
      const ProgressState state{123'456'789, 12'345, 86'400, part};
      EXPECT_LE(progress_line(state, columns).size(), static_cast<std::size_t>(columns));
    }
  }
}

TEST(Progress, NothingIsKnownAtTheStart) {
  EXPECT_EQ(progress_line({0, 0, 0, {}}, 79), "0 frames, 0 frames/s");
  EXPECT_EQ(progress_line({0, 0, 0, 0.0}, 79).find("left"), std::string::npos);
}

}  // namespace
