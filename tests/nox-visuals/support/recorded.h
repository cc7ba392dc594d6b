// Observations as a stream would make them, written down by hand.
#ifndef NOX_VISUALS_TESTS_RECORDED_H_
#define NOX_VISUALS_TESTS_RECORDED_H_

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "nox-visuals/observation.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app::recorded {

inline Moment at(double seconds) {
  Moment when;
  when.pts_ns = std::llround(seconds * 1e9);
  when.unix_us = 1'769'853'600'000'000 + std::llround(seconds * 1e6);
  when.entered_ns = 77'000'000'000 + *when.pts_ns;
  return when;
}

inline Pen pen(double seconds, double x, double y, bool pressed, std::uint64_t stroke = 1) {
  return {at(seconds), {x, y}, pressed, {static_cast<float>(1 - x), static_cast<float>(y)}, stroke};
}

inline Loss loss(double seconds, bool pressed) {
  return {at(seconds), pressed};
}

inline Code code(double seconds, const std::string &text) {
  return {at(seconds), text, {{{1, 1}, {9, 1}, {9, 9}, {1, 9}}}, 21, "quirc"};
}

// What an output says.
struct Sentences {
  std::vector<std::string> said;
  Say say() {
    return [this](const std::string &sentence) { said.push_back(sentence); };
  }
};

}  // namespace nox::app::recorded

#endif  // NOX_VISUALS_TESTS_RECORDED_H_
