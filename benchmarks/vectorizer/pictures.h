// The 1080p pictures that the vectorizer is measured on.
#ifndef VECTORIZER_PICTURES_H_
#define VECTORIZER_PICTURES_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::bench {

inline constexpr std::int32_t kWidth = 1920;
inline constexpr std::int32_t kHeight = 1080;
inline constexpr std::size_t kLumaBytes = std::size_t{kWidth} * kHeight;
inline constexpr std::size_t kFrameBytes = kLumaBytes * 3 / 2;

// The three planes of a frame that lies in one block of kFrameBytes.
inline NoxVideoFrame frame_at(std::uint8_t *block) {
  NoxVideoFrame frame{};
  frame.format = kNoxFormatI420;
  frame.width = kWidth;
  frame.height = kHeight;
  frame.n_planes = 3;
  for (int p = 0; p < 3; ++p) {
    frame.planes[p] = block;
    frame.strides[p] = frame.plane_widths[p] = p == 0 ? kWidth : kWidth / 2;
    frame.plane_heights[p] = p == 0 ? kHeight : kHeight / 2;
    block += std::ptrdiff_t{frame.strides[p]} * frame.plane_heights[p];
  }
  return frame;
}

enum class Picture { kScene, kNoise };

// A still of a camera: sloping light, boxes and discs with sharp borders, a few steps of sensor
// noise.
inline void fill_scene(std::uint8_t *block, test::Random *random) {
  for (std::int32_t y = 0; y < kHeight; ++y) {
    for (std::int32_t x = 0; x < kWidth; ++x) {
      const bool box = x / 160 % 3 == 1 && y / 120 % 2 == 1;
      const bool disc = std::hypot(x % 480 - 240, y % 360 - 180) < 70.0;
      const int light = 60 + x / 20 + y / 30 + (box ? 50 : 0) - (disc ? 45 : 0);
      *block++ = static_cast<std::uint8_t>(std::clamp(light + random->between(-2, 2), 0, 255));
    }
  }
  for (std::size_t i = kLumaBytes; i < kFrameBytes; ++i) {
    *block++ = static_cast<std::uint8_t>(128 + random->between(-20, 20));
  }
}

inline void fill_picture(std::uint8_t *block, Picture picture, std::uint64_t seed) {
  test::Random random(seed);
  if (picture == Picture::kScene) {
    fill_scene(block, &random);
  } else {
    random.fill(block, kFrameBytes);
  }
}

}  // namespace nox::bench

#endif  // VECTORIZER_PICTURES_H_
