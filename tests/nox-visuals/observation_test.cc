#include "nox-visuals/observation.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using nox::app::Code;
using nox::app::End;
using nox::app::Loss;
using nox::app::Moment;
using nox::app::Pen;
using nox::app::to_json;

Moment moment(std::int64_t pts_ns, std::int64_t unix_us) {
  return {pts_ns, unix_us, 0};
}

TEST(Observation, PenIsOneLine) {
  const Pen pen{
      moment(533'000'000, 1'769'853'600'533'000), {0.594884, 0.713984}, true, {0.404F, 0.712F}, 1};
  EXPECT_EQ(to_json(pen, "hall-cam1"),
            R"({"type":"pen","stream":"hall-cam1","time":"2026-01-31T10:00:00.533Z","pts":0.533,)"
            R"("x":0.594884,"y":0.713984,"pressed":true,"stroke":1,"raw":[0.404,0.712]})");
}

TEST(Observation, ARecoveredPenSaysSo) {
  const Pen pen{{}, {0.5, 0.25}, true, {0.5F, 0.25F}, 3, true};
  EXPECT_EQ(to_json(pen, "s"),
            R"({"type":"pen","stream":"s","x":0.5,"y":0.25,"pressed":true,"stroke":3,)"
            R"("raw":[0.5,0.25],"recovered":true})");
}

TEST(Observation, PlacesAreRoundedToSixDecimals) {
  const Pen pen{{}, {1.0 / 3, -1e-9}, false, {1.0F / 3, 0.0F}, 2};
  EXPECT_EQ(to_json(pen, "s"),
            R"({"type":"pen","stream":"s","x":0.333333,"y":0,"pressed":false,"stroke":2,)"
            R"("raw":[0.33333334,0]})");
}

TEST(Observation, TimesAreLeftOutWhereThereAreNone) {
  EXPECT_EQ(to_json(Loss{{}, true}, "s"), R"({"type":"lost","stream":"s","pressed":true})");
}

TEST(Observation, LossSaysHowThePenWas) {
  EXPECT_EQ(to_json(Loss{moment(9'100'000'000, 1'769'853'609'999'999), false}, "s"),
            R"({"type":"lost","stream":"s","time":"2026-01-31T10:00:09.999Z","pts":9.1,)"
            R"("pressed":false})");
}

Code code(const std::string &bytes) {
  return {moment(100'000'000, 0), bytes, {{{1, 2}, {3.5, 2}, {3.5, 4}, {1, 4}}}, 25, "quirc"};
}

TEST(Observation, TextOfACodeIsEscaped) {
  EXPECT_EQ(to_json(code(std::string("a\"\\\n\0\x7F\xC3\xBC", 8)), "s"),
            R"({"type":"code","stream":"s","time":"1970-01-01T00:00:00.000Z","pts":0.1,)"
            R"("text":"a\"\\\u000a\u0000\u007fü","bytes":8,)"
            R"("corners":[[1,2],[3.5,2],[3.5,4],[1,4]],"size":25,"reader":"quirc"})");
}

TEST(Observation, BytesThatAreNoTextAreBase64) {
  const std::string not_utf8[] = {"\xFF",
                                  "\xC3",
                                  "\xC0\x80",
                                  "\xED\xA0\x80",
                                  "\xF4\x90\x80\x80",
                                  "\xE2\x82",
                                  "\xF0\x80\x80\x80",
                                  "\x80",
                                  "\xC3("};
  for (const std::string &bytes : not_utf8) {
    const std::string json = to_json(code(bytes), "s");
    EXPECT_EQ(json.find("\"text\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"data\""), std::string::npos) << json;
  }
  EXPECT_NE(to_json(code("\xFF\xFE\xFD"), "s").find(R"("data":"//79")"), std::string::npos);
}

TEST(Observation, TextOfEveryLengthOfSequencesIsText) {
  const std::string text =
      "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  EXPECT_NE(to_json(code(text), "s").find("\"text\""), std::string::npos);
}

TEST(Observation, EndHasTheCounts) {
  EXPECT_EQ(to_json(End{{}, {450, 447, 1, 2, 3, 4}}, "s"),
            R"({"type":"end","stream":"s","frames":450,"found":447,"losses":1,)"
            R"("losses_pressed":2,"dropped":3,"undelivered":4})");
}

}  // namespace
