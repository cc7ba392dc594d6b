#include "nox-visuals/tune/light.h"

#include <algorithm>
#include <cstdint>

namespace nox::app {
namespace {

constexpr std::uint8_t kPenLevel = 170;  // what is above it may be a pen to the tracker

double share_reaching(const NoxVideoFrame &frame, int plane) {
  const std::int32_t width = frame.plane_widths[plane];
  std::int64_t reaching = 0;
  const std::uint8_t *row = frame.planes[plane];
  for (std::int32_t y = 0; y < frame.plane_heights[plane]; ++y, row += frame.strides[plane]) {
    reaching +=
        std::count_if(row, row + width, [](std::uint8_t sample) { return sample >= kPenLevel; });
  }
  return static_cast<double>(reaching) / (double{1} * width * frame.plane_heights[plane]);
}

double mean_luma(const NoxVideoFrame &frame) {
  const std::int32_t width = frame.plane_widths[0];
  std::int64_t sum = 0;
  const std::uint8_t *row = frame.planes[0];
  for (std::int32_t y = 0; y < frame.plane_heights[0]; ++y, row += frame.strides[0]) {
    for (std::int32_t x = 0; x < width; ++x) sum += row[x];
  }
  return static_cast<double>(sum) / (double{1} * width * frame.plane_heights[0]);
}

}  // namespace

double Light::most() const {
  return *std::max_element(reaching.begin(), reaching.end());
}

Light measure_light(const NoxVideoFrame &frame) {
  Light light;
  for (int plane = 0; plane < 3; ++plane) light.reaching[plane] = share_reaching(frame, plane);
  light.luma = mean_luma(frame);
  return light;
}

Light measure_light(CameraPictures *pictures, int count) {
  Light sum;
  for (int i = 0; i < count; ++i) {
    const Light light = measure_light(*pictures->next().frame);
    for (int plane = 0; plane < 3; ++plane) sum.reaching[plane] += light.reaching[plane] / count;
    sum.luma += light.luma / count;
  }
  return sum;
}

}  // namespace nox::app
