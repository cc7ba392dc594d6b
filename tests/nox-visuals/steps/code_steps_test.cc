// What becomes of codes between the stream and the outputs.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "nox-visuals/steps/first_code.h"
#include "nox-visuals/steps/unique_codes.h"

namespace nox::test {
namespace {

using app::Code;
using app::End;
using app::FirstCode;
using app::Observation;
using app::Step;
using app::UniqueCodes;

Code code_at(double seconds, const std::string &bytes) {
  Code code;
  code.when.pts_ns = static_cast<std::int64_t>(seconds * 1e9);
  code.bytes = bytes;
  return code;
}

// The payloads that pass, with a dot for the end.
std::vector<std::string> passed(Step *step, const std::vector<Observation> &in) {
  std::vector<Observation> out;
  for (const Observation &it : in) step->take(it, &out);
  std::vector<std::string> names;
  for (const Observation &it : out) {
    const auto *code = std::get_if<Code>(&it);
    names.push_back(code == nullptr ? "." : code->bytes);
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(UniqueCodes, PassEachPayloadOnce) {
  UniqueCodes step(std::nullopt);
  EXPECT_EQ(passed(&step, {code_at(0, "a"), code_at(0, "b"), code_at(1, "a"), code_at(900, "b"),
                           code_at(901, "c"), End{}}),
            (Names{"a", "b", "c", "."}));
}

TEST(UniqueCodes, PassAPayloadAgainAfterAPause) {
  UniqueCodes step(2.0);
  EXPECT_EQ(passed(&step, {code_at(0, "a"), code_at(1.9, "a"), code_at(3.8, "a")}), Names{"a"});
  EXPECT_EQ(passed(&step, {code_at(5.8, "a"), code_at(5.9, "a")}), Names{"a"});
}

TEST(UniqueCodes, TellPayloadsApartToTheLastByte) {
  UniqueCodes step(std::nullopt);
  const std::string with_nul("a\0", 2);
  EXPECT_EQ(passed(&step, {code_at(0, "a"), code_at(0, with_nul)}), (Names{"a", with_nul}));
}

TEST(UniqueCodes, TakeOlderFramesOfASlowReader) {
  UniqueCodes step(1.0);
  EXPECT_EQ(passed(&step, {code_at(5, "a"), code_at(4.5, "a"), code_at(5.9, "a")}), Names{"a"});
}

TEST(UniqueCodes, ReckonWithTheClockWhereAStreamHasNoTime) {
  UniqueCodes step(1.0);
  Code code;
  code.bytes = "a";
  code.when.entered_ns = 1'000'000'000;
  Code again = code;
  again.when.entered_ns = 2'100'000'000;
  EXPECT_EQ(passed(&step, {code, code, again}), (Names{"a", "a"}));
}

TEST(UniqueCodes, KeepTheirMindOverManyPayloads) {
  UniqueCodes step(10.0);
  for (int i = 0; i < 5000; ++i) {
    const double now = i / 100.0;
    const Code code = code_at(now, std::to_string(i));
    EXPECT_EQ(passed(&step, {code, code, code_at(now, "always there")}).size(), i == 0 ? 2U : 1U);
  }
}

TEST(UniqueCodes, ForgetThePayloadThatWasAwayTheLongest) {
  UniqueCodes step(std::nullopt);
  const auto is_said = [&step](std::size_t number) {
    return passed(&step, {code_at(0, std::to_string(number))}).size() == 1;
  };
  for (std::size_t i = 0; i < app::kRememberedCodes; ++i) EXPECT_TRUE(is_said(i));
  EXPECT_FALSE(is_said(0));
  // One more than can be remembered: 1 goes, which is the oldest now.
  EXPECT_TRUE(is_said(app::kRememberedCodes));
  EXPECT_FALSE(is_said(0));
  EXPECT_FALSE(is_said(2));
  EXPECT_TRUE(is_said(1));
}

TEST(FirstCode, PassesAloneAndAsksForTheEndOnce) {
  int stops = 0;
  FirstCode step([&stops] { ++stops; });
  EXPECT_EQ(passed(&step, {code_at(0, "a"), code_at(0, "b"), code_at(1, "a"), End{}}),
            (Names{"a", "."}));
  EXPECT_EQ(stops, 1);
}

}  // namespace
}  // namespace nox::test
