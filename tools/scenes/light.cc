#include "scenes/light.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace nox::scenes {
namespace {

constexpr float kGamma = 2.2F;
constexpr int kCodes = 1 << 16;

// From light to its code, 0 to 1.
float code(float light) {
  static const std::vector<float> table = [] {
    std::vector<float> codes(kCodes + 1);
    for (int i = 0; i <= kCodes; ++i) {
      codes[static_cast<std::size_t>(i)] = std::pow(static_cast<float>(i) / kCodes, 1.0F / kGamma);
    }
    return codes;
  }();
  return table[static_cast<std::size_t>(std::clamp(light, 0.0F, 1.0F) * kCodes)];
}

// And back, from a code of 0 to 1.
float uncode(float value) {
  constexpr int kSteps = 1 << 12;
  static const std::vector<float> table = [] {
    std::vector<float> lights(kSteps + 1);
    for (int i = 0; i <= kSteps; ++i) {
      lights[static_cast<std::size_t>(i)] = std::pow(static_cast<float>(i) / kSteps, kGamma);
    }
    return lights;
  }();
  return table[static_cast<std::size_t>(std::clamp(value, 0.0F, 1.0F) * kSteps)];
}

struct Scales {
  float black, luma, chroma;
};

Scales scales(Range range) {
  return range == Range::kStudio ? Scales{16, 219, 224} : Scales{0, 255, 255};
}

std::uint8_t to_sample(float value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

Color coded(const Color &light) {
  return {code(light.r), code(light.g), code(light.b)};
}

float luma(const Color &c) {
  return 0.299F * c.r + 0.587F * c.g + 0.114F * c.b;
}

std::uint8_t *sample(const NoxVideoFrame &frame, int plane, int x, int y) {
  return frame.planes[plane] + static_cast<std::ptrdiff_t>(y) * frame.strides[plane] + x;
}

// Two by two pixels at (x, y) of the area, as four samples of luma and one of each chroma.
void write_block(const Canvas &light, int x, int y, const Area &area, const Scales &scale,
                 NoxVideoFrame *frame) {
  Color mean{0, 0, 0};
  for (int dy = 0; dy < 2; ++dy) {
    for (int dx = 0; dx < 2; ++dx) {
      const Color c = coded(light.pixel(x + dx, y + dy));
      mean = {mean.r + c.r / 4, mean.g + c.g / 4, mean.b + c.b / 4};
      *sample(*frame, 0, area.left + x + dx, area.top + y + dy) =
          to_sample(scale.black + scale.luma * luma(c));
    }
  }
  const float grey = luma(mean);
  const int cx = (area.left + x) / 2;
  const int cy = (area.top + y) / 2;
  *sample(*frame, 1, cx, cy) = to_sample(128 + scale.chroma * (mean.b - grey) / 1.772F);
  *sample(*frame, 2, cx, cy) = to_sample(128 + scale.chroma * (mean.r - grey) / 1.402F);
}

Color light_at(const NoxVideoFrame &frame, int x, int y, const Scales &scale) {
  const float grey = (static_cast<float>(*sample(frame, 0, x, y)) - scale.black) / scale.luma;
  const float blue = (static_cast<float>(*sample(frame, 1, x / 2, y / 2)) - 128) / scale.chroma;
  const float red = (static_cast<float>(*sample(frame, 2, x / 2, y / 2)) - 128) / scale.chroma;
  return {uncode(grey + 1.402F * red), uncode(grey - 0.344F * blue - 0.714F * red),
          uncode(grey + 1.772F * blue)};
}

void add_noise(NoxVideoFrame *frame, int plane, const NoiseField &noise, std::uint32_t index,
               float sigma) {
  const auto width = static_cast<std::size_t>(frame->plane_widths[plane]);
  for (int y = 0; y < frame->plane_heights[plane]; ++y) {
    std::uint8_t *row = sample(*frame, plane, 0, y);
    const float *by = noise.row(index * 4 + static_cast<std::uint32_t>(plane),
                                static_cast<std::uint32_t>(y), width);
    for (std::size_t x = 0; x < width; ++x) {
      row[x] = to_sample(static_cast<float>(row[x]) + sigma * by[x]);
    }
  }
}

}  // namespace

Area whole(const NoxVideoFrame &frame) {
  return {0, 0, frame.width & ~1, frame.height & ~1};
}

Area around(Point from, Point to, float reach, int width, int height) {
  const auto low = [&](float a, float b, int limit) {
    return std::clamp(static_cast<int>(std::min(a, b) - reach), 0, limit) & ~1;
  };
  const auto high = [&](float a, float b, int limit) {
    return std::clamp(static_cast<int>(std::max(a, b) + reach) + 2, 0, limit) & ~1;
  };
  return {low(from.x, to.x, width), low(from.y, to.y, height), high(from.x, to.x, width),
          high(from.y, to.y, height)};
}

Canvas read_light(const NoxVideoFrame &frame, const Area &area, Range range) {
  Canvas light(area.right - area.left, area.bottom - area.top);
  const Scales scale = scales(range);
  for (int y = 0; y < light.height(); ++y) {
    for (int x = 0; x < light.width(); ++x) {
      light.mix(x, y, light_at(frame, area.left + x, area.top + y, scale), 1.0F);
    }
  }
  return light;
}

void write_light(const Canvas &light, const Area &area, Range range, NoxVideoFrame *frame) {
  const Scales scale = scales(range);
  for (int y = 0; y + 1 < light.height(); y += 2) {
    for (int x = 0; x + 1 < light.width(); x += 2) write_block(light, x, y, area, scale, frame);
  }
}

void expose(NoxVideoFrame *frame, float factor, Range range) {
  const Area area = whole(*frame);
  Canvas light = read_light(*frame, area, range);
  light.expose(factor);
  write_light(light, area, range, frame);
}

void strengthen_colours(NoxVideoFrame *frame, float factor) {
  for (int plane = 1; plane < 3; ++plane) {
    for (int y = 0; y < frame->plane_heights[plane]; ++y) {
      std::uint8_t *row = sample(*frame, plane, 0, y);
      std::transform(row, row + frame->plane_widths[plane], row, [factor](std::uint8_t value) {
        return to_sample(128 + factor * (static_cast<float>(value) - 128));
      });
    }
  }
}

void add_sensor_noise(NoxVideoFrame *frame, const NoiseField &noise, std::uint32_t index,
                      float sigma) {
  for (int plane = 0; plane < 3; ++plane) {
    add_noise(frame, plane, noise, index, plane == 0 ? sigma : sigma / 2);
  }
}

}  // namespace nox::scenes
