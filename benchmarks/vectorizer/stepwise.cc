#include "vectorizer/stepwise.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "vectorizer/frame_overlay.h"

namespace nox::bench {

namespace {

constexpr std::int8_t kGx[9] = {1, 0, -1, 2, 0, -2, 1, 0, -1};
constexpr std::int8_t kGy[9] = {1, 2, 1, 0, 0, 0, -1, -2, -1};
constexpr std::uint8_t kCross[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};

void find_gradient(const NoxVideoFrame &frame, const std::int8_t *kernel, std::uint8_t *gradient) {
  const std::ptrdiff_t stride = frame.strides[0];
  for (std::int32_t y = 0; y < frame.height - 3; ++y) {
    for (std::int32_t x = 0; x < frame.width - 3; ++x) {
      std::int32_t sum = 0;
      for (int j = 0; j < 3; ++j) {
        const std::uint8_t *row = frame.planes[0] + (y + j) * stride + x;
        for (int i = 0; i < 3; ++i) sum += row[i] * kernel[3 * j + i];
      }
      const int value = std::abs(5 * sum);
      gradient[(y + 1) * stride + x + 1] = static_cast<std::uint8_t>(std::min(value, 255));
    }
  }
}

}  // namespace

StepwiseVectorizer::StepwiseVectorizer(std::int32_t width, std::int32_t height)
    : short_(mask_ring_new(width, height, 100)),
      long_(mask_ring_new(width, height, 500)),
      cross_(structuring_element_new(kCross, 3, 3)) {
  for (MaskRing *ring : {short_, long_}) {
    for (std::int32_t i = 0; i < ring->capacity; ++i) mask_ring_next(ring);
  }
}

StepwiseVectorizer::~StepwiseVectorizer() {
  mask_ring_free(short_);
  mask_ring_free(long_);
  structuring_element_free(cross_);
}

void StepwiseVectorizer::find_magnitude(const NoxVideoFrame &frame) {
  const auto size =
      static_cast<std::size_t>(frame.strides[0]) * static_cast<std::size_t>(frame.height);
  for (Plane *plane : {&gx_, &gy_, &magnitude_}) plane->assign(size, 0);
  find_gradient(frame, kGx, gx_.data());
  find_gradient(frame, kGy, gy_.data());
  for (std::size_t i = 0; i < size; ++i) {
    const int square = gx_[i] * gx_[i] + gy_[i] * gy_[i];
    const int root = static_cast<int>(std::sqrt(static_cast<float>(square)));
    magnitude_[i] = static_cast<std::uint8_t>(std::min(root, 255));
  }
}

void StepwiseVectorizer::close_edges(BitMask *closed) const {
  BitMask *edges = bitmask_new(closed->width, closed->height);
  BitMask *dilated = bitmask_new(closed->width, closed->height);
  bitmask_threshold(edges, magnitude_.data(), closed->width, 128);
  bitmask_dilate(dilated, edges, cross_);
  bitmask_erode(closed, dilated, cross_);
  bitmask_free(edges);
  bitmask_free(dilated);
}

void StepwiseVectorizer::draw(const NoxVideoFrame &frame, const BitMask *shown) const {
  NoxVideoFrame copy;
  nox_video_frame_alloc(&copy, kNoxFormatA420, frame.strides[0], frame.height);
  for (int p = 0; p < 3; ++p) {
    const auto size = static_cast<std::size_t>(frame.strides[p]) *
                      static_cast<std::size_t>(frame.plane_heights[p]);
    std::memcpy(copy.planes[p], frame.planes[p], size);
    std::memset(frame.planes[p], p == 0 ? 255 : 128, size);
  }
  for (std::int32_t y = 0; y < frame.height; ++y) {
    std::uint8_t *alpha = copy.planes[3] + static_cast<std::ptrdiff_t>(y) * copy.strides[3];
    for (std::int32_t x = 0; x < frame.width; ++x) alpha[x] = bitmask_get(shown, x, y) ? 64 : 16;
  }
  video_frame_overlay(&frame, &copy, 0, 0);
  nox_video_frame_free_planes(&copy);
}

void StepwiseVectorizer::process(const NoxVideoFrame &frame) {
  find_magnitude(frame);
  close_edges(mask_ring_next(short_));
  BitMask *lasting = bitmask_new(frame.width, frame.height);
  mask_ring_and(short_, lasting);
  bitmask_copy(mask_ring_next(long_), lasting);
  BitMask *shown = bitmask_new(frame.width, frame.height);
  mask_ring_or(long_, shown);
  draw(frame, shown);
  bitmask_free(lasting);
  bitmask_free(shown);
}

}  // namespace nox::bench
