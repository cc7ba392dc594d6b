#include "nox-visuals/stream/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace nox::app {
namespace {

constexpr int kWidestBar = 40;
constexpr int kNarrowestBar = 5;

// As in 1:02:03 or 2:03.
std::string clock_time(double seconds) {
  const auto whole = static_cast<long>(std::lround(seconds));
  char text[64];
  if (whole >= 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  }
  return text;
}

std::string bar(double part, int width) {
  const auto done = static_cast<std::size_t>(std::lround(part * width));
  std::string drawn = "[";
  drawn.append(done, '#').append(static_cast<std::size_t>(width) - done, '.');
  return drawn + "]";
}

std::string rate(const ProgressState &state) {
  const double rate = state.elapsed_s > 0 ? static_cast<double>(state.frames) / state.elapsed_s : 0;
  return std::to_string(std::lround(rate)) + " frames/s";
}

std::string time_left(const ProgressState &state) {
  if (*state.part <= 0) return "";
  return ", " + clock_time(state.elapsed_s * (1 - *state.part) / *state.part) + " left";
}

}  // namespace

std::string progress_line(const ProgressState &state, int columns) {
  std::string line;
  if (state.part) {
    char percent[16];
    std::snprintf(percent, sizeof percent, "%3d %%, ", static_cast<int>(*state.part * 100));
    line = percent + rate(state) + time_left(state);
    const int room = std::min(columns - static_cast<int>(line.size()) - 3, kWidestBar);
    if (room >= kNarrowestBar) line = bar(*state.part, room) + " " + line;
  } else {
    line = std::to_string(state.frames) + " frames, " + rate(state);
    if (state.dropped > 0) line += ", " + std::to_string(state.dropped) + " dropped";
  }
  return line.substr(0, static_cast<std::size_t>(std::max(columns, 0)));
}

}  // namespace nox::app
