#include "nox-visuals/doctor/finding.h"

#include <array>
#include <cstdio>

#include "nox-visuals/json_object.h"

namespace nox::app {
namespace {

const char *word_of(Verdict verdict) {
  switch (verdict) {
    case Verdict::kOk:
      return "ok";
    case Verdict::kWarn:
      return "warn";
    case Verdict::kFail:
      return "fail";
  }
  return "";
}

}  // namespace

std::string to_line(const Finding &finding) {
  std::string line = word_of(finding.verdict);
  line.resize(5, ' ');
  line += finding.subject + " " + finding.text;
  if (!finding.advice.empty()) line += "; try: " + finding.advice;
  return line;
}

std::string to_json(const Finding &finding) {
  JsonObject object;
  object.text("type", "finding");
  object.text("verdict", word_of(finding.verdict));
  object.text("subject", finding.subject);
  object.text("text", finding.text);
  if (!finding.advice.empty()) object.text("advice", finding.advice);
  return object.str();
}

std::string percent(double share) {
  if (share == 0) return "none";
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), share < 0.01 ? "%.1g %%" : "%.0f %%", share * 100);
  return text.data();
}

}  // namespace nox::app
