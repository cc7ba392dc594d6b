// The picture of the benchmarks: bright blobs and single samples on a dark ground, which thresholds
// to about a third of the pixels.
#ifndef MASKS_PICTURES_H_
#define MASKS_PICTURES_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "masks/bitmask.h"
#include "masks/mask_maker.h"
#include "support/random.h"
#include "video/aligned_alloc.h"

namespace nox::bench {

inline constexpr std::uint32_t kLimit = 170;

struct Picture {
  std::int32_t width;
  std::int32_t height;
  std::shared_ptr<std::uint8_t> samples;  // packed rows, aligned as the cores' planes are

  std::uint8_t &at(std::int32_t x, std::int32_t y) const {
    return samples.get()[static_cast<std::ptrdiff_t>(y) * width + x];
  }
};

inline Picture make_picture(std::int32_t width, std::int32_t height) {
  const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  const Picture picture{
      width,
      height,
      {static_cast<std::uint8_t *>(nox_aligned_alloc(kNoxAlignment, size)), nox_aligned_free}};
  test::Random random(40);
  random.fill(picture.samples.get(), size);
  constexpr std::int32_t kCell = 40;
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      const std::int32_t dx = x % kCell - kCell / 2;
      const std::int32_t dy = y % kCell - kCell / 2;
      std::uint8_t &sample = picture.at(x, y);
      const bool blob = dx * dx + dy * dy < 150;
      sample = static_cast<std::uint8_t>(blob ? 200 + sample % 56 : sample % 174);
    }
  }
  return picture;
}

inline test::MaskPtr make_mask(const Picture &picture) {
  test::MaskPtr mask = test::make_mask(picture.width, picture.height);
  bitmask_threshold(mask.get(), picture.samples.get(), picture.width, kLimit);
  return mask;
}

}  // namespace nox::bench

#endif  // MASKS_PICTURES_H_
