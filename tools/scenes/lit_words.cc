#include "scenes/lit_words.h"

#include <cstdio>
#include <stdexcept>

namespace nox::scenes {
namespace {

float number(const std::string &word, const std::string &value) {
  float parsed = 0;
  int length = 0;
  const bool whole = std::sscanf(value.c_str(), "%f%n", &parsed, &length) == 1 &&
                     static_cast<std::size_t>(length) == value.size();
  if (!whole || !(parsed >= 0)) throw std::invalid_argument(word + ": expected a number from 0 on");
  return parsed;
}

// The first of `names` is false, the second true.
bool one_of(const std::string &word, const std::string &value, const char *no, const char *yes) {
  if (value == no) return false;
  if (value == yes) return true;
  throw std::invalid_argument(word + ": expected " + no + " or " + yes);
}

PenKind kind(const std::string &word, const std::string &value) {
  if (value == "none") return PenKind::kNone;
  return one_of(word, value, "ball", "bare") ? PenKind::kBare : PenKind::kBall;
}

void read_word(const std::string &word, LitPen *pen) {
  const auto equals = word.find('=');
  const std::string key = word.substr(0, equals);
  const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
  if (key == "pen") {
    pen->kind = kind(word, value);
  } else if (key == "speed") {
    pen->speed = number(word, value);
  } else if (key == "open") {
    pen->open = number(word, value);
  } else if (key == "exposure") {
    pen->exposure = number(word, value);
  } else if (key == "colours") {
    pen->colours = number(word, value);
  } else if (key == "range") {
    pen->range = one_of(word, value, "studio", "full") ? Range::kFull : Range::kStudio;
  } else {
    throw std::invalid_argument(word + ": not known");
  }
}

}  // namespace

LitPen parse_lit_pen(const std::vector<std::string> &words) {
  LitPen pen;
  for (const std::string &word : words) read_word(word, &pen);
  return pen;
}

std::string truth_lines(const LitScene &scene, std::uint32_t frames) {
  std::string lines;
  for (std::uint32_t i = 0; i < frames; ++i) {
    const PenMoment moment = scene.truth(i);
    char line[80];
    std::snprintf(line, sizeof line, "%u,%d,%d,%.6f,%.6f\n", i, moment.visible ? 1 : 0,
                  moment.stroke.pressed ? 1 : 0, static_cast<double>(moment.middle.x),
                  static_cast<double>(moment.middle.y));
    lines += line;
  }
  return lines;
}

}  // namespace nox::scenes
