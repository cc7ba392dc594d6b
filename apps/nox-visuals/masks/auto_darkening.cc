#include "nox-visuals/masks/auto_darkening.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace nox::app {
namespace {

constexpr std::uint32_t kFramesBetween = 30;
constexpr std::int64_t kOneOf = 100;  // samples may be brighter
constexpr int kBright = 160;

// The least luma that at most one in kOneOf samples is above.
int brightest(const NoxVideoFrame &frame) {
  std::array<std::int64_t, 256> counts{};
  for (std::int32_t y = 0; y < frame.plane_heights[0]; ++y) {
    const std::uint8_t *row = frame.planes[0] + static_cast<std::ptrdiff_t>(y) * frame.strides[0];
    for (std::int32_t x = 0; x < frame.plane_widths[0]; ++x) ++counts[row[x]];
  }
  const std::int64_t samples = std::int64_t{frame.plane_widths[0]} * frame.plane_heights[0];
  std::int64_t above = 0;
  int luma = 255;
  for (; luma > 0; --luma) {
    above += counts[static_cast<std::size_t>(luma)];
    if (above * kOneOf > samples) break;
  }
  return luma;
}

}  // namespace

void AutoDarkening::look(const NoxVideoFrame &frame, bool held) {
  const std::uint32_t index = frames_++;
  if (index % kFramesBetween != 0 || held) return;
  const int wanted = std::clamp(brightest(frame) - kBright, 0, kMostDarker);
  level_ = index == 0 ? wanted : std::clamp(wanted, level_ - 1, level_ + 1);
}

}  // namespace nox::app
