// The 1080p pictures that the vectorizer is measured on.
#ifndef VECTORIZER_PICTURES_H_
#define VECTORIZER_PICTURES_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "support/full_hd.h"
#include "support/random.h"

namespace nox::bench {

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
