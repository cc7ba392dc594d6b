// A video whose edges come, last and go, for tests of what the vectorizer remembers.
#ifndef VECTORIZER_CHANGING_PICTURE_H_
#define VECTORIZER_CHANGING_PICTURE_H_

#include <algorithm>
#include <cstdint>

#include "support/random.h"
#include "vectorizer/planar_frame.h"

namespace nox::test {

// Rectangles of flat, noisy and sloping content appear at random places, on average so rarely that
// many places keep their content for more than 100 frames, and some for more than 500.
class ChangingPicture {
 public:
  ChangingPicture(const PlanarFrame &like, std::uint64_t seed)
      : random_(seed),
        width_(like.get().width),
        height_(like.get().height),
        luma_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)) {
    random_.fill(luma_.data(), luma_.size());
    for (int i = 0; i < 12; ++i) draw_rectangle();
  }

  // Writes the next frame; chroma and padding are new noise every time.
  void next(PlanarFrame *frame) {
    if (random_.chance(0.15)) draw_rectangle();
    frame->randomize(&random_);
    for (std::int32_t y = 0; y < height_; ++y) {
      std::copy_n(luma_.data() + static_cast<std::ptrdiff_t>(y) * width_, width_,
                  frame->plane(0).row(y));
    }
  }

 private:
  void draw_rectangle() {
    const std::int32_t left = random_.between(0, width_ - 1), top = random_.between(0, height_ - 1);
    const std::int32_t right = std::min(width_, left + random_.between(1, width_ / 3 + 1));
    const std::int32_t bottom = std::min(height_, top + random_.between(1, height_ / 3 + 1));
    const int value = random_.between(0, 255), noise = random_.between(0, 3) * 8;
    const int slope = random_.between(-8, 8);
    for (std::int32_t y = top; y < bottom; ++y) {
      for (std::int32_t x = left; x < right; ++x) {
        const int sample = value + slope * (x - left) + random_.between(-noise, noise);
        luma_[static_cast<std::size_t>(y * width_ + x)] =
            static_cast<std::uint8_t>(std::clamp(sample, 0, 255));
      }
    }
  }

  Random random_;
  std::int32_t width_;
  std::int32_t height_;
  std::vector<std::uint8_t> luma_;
};

}  // namespace nox::test

#endif  // VECTORIZER_CHANGING_PICTURE_H_
