// What the doctor says of a picture.
#include "nox-visuals/doctor/scene_look.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nox::app {
namespace {

SceneLook good_look() {
  SceneLook look;
  look.totals.frames = 150;
  look.totals.found = 90;
  look.totals.losses = 1;
  look.width = 1280;
  look.height = 720;
  look.seconds = 5.04;
  look.waits = {0.4, 0.5, 0.6};
  return look;
}

std::vector<std::string> lines(const SceneLook &look) {
  std::vector<std::string> out;
  for (const Finding &finding : findings_of(look)) out.push_back(to_line(finding));
  return out;
}

TEST(SceneLook, TellsWhatAGoodSceneShows) {
  EXPECT_EQ(
      lines(good_look()),
      (std::vector<std::string>{
          "ok   source 1280x720, 150 frames in 5.0 s, 0 dropped", "ok   light none above 170",
          "ok   colours none blue or red above 170", "ok   pen in 60 % of the frames, lost 1 time",
          "ok   latency from frame to event 0.5 ms, 99 of 100 within 0.5 ms"}));
}

TEST(SceneLook, WarnsOfABrightRoomStrongColoursAndASlowMachine) {
  SceneLook look = good_look();
  look.bright = 0.314;
  look.coloured = 0.2;
  look.totals.dropped = 40;
  look.waits = {20.0, 50.0, 50.0, 60.0};
  const auto said = lines(look);
  EXPECT_EQ(said[0].substr(0, 5), "warn ");
  EXPECT_EQ(said[1].substr(0, 26), "warn light 31 % above 170;");
  EXPECT_EQ(said[2].substr(0, 12), "warn colours");
  EXPECT_EQ(said[4].substr(0, 12), "warn latency");
}

TEST(SceneLook, FailsWithoutAFrame) {
  SceneLook look;
  EXPECT_EQ(lines(look).front(),
            "fail source brought no frame in 10 seconds; try: another program may hold it");
  look.failure = "cam: is busy";
  EXPECT_EQ(lines(look), std::vector<std::string>{"fail source cam: is busy"});
}

TEST(Finding, AsJson) {
  EXPECT_EQ(to_json({Verdict::kWarn, "light", "31 % above 170", "a \"dark\" room"}),
            R"({"type":"finding","verdict":"warn","subject":"light","text":"31 % above 170",)"
            R"("advice":"a \"dark\" room"})");
}

TEST(Finding, SmallSharesKeepADigit) {
  EXPECT_EQ(percent(0.0), "none");
  EXPECT_EQ(percent(0.0042), "0.4 %");
  EXPECT_EQ(percent(0.305), "30 %");
  EXPECT_EQ(percent(1.0), "100 %");
}

}  // namespace
}  // namespace nox::app
