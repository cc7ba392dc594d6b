// Planar 4:2:0 frames as a fuzzer likes them: any size, any strides, planes larger and smaller than
// the picture.
#ifndef FUZZ_FRAME_H_
#define FUZZ_FRAME_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "video/nox_video_frame.h"

namespace nox::fuzz {

// A frame whose planes are blocks of exactly the bytes that they own.
class Frame {
 public:
  Frame(Input *input, std::int32_t width, std::int32_t height) {
    const bool alpha = input->flag();
    record_.format = alpha ? kNoxFormatA420 : kNoxFormatI420;
    record_.width = width;
    record_.height = height;
    record_.n_planes = alpha ? 4 : 3;
    const std::int32_t round = input->next() % 4 == 0 ? 0 : 1;
    for (int p = 0; p < record_.n_planes; ++p) {
      const bool chroma = p == 1 || p == 2;
      set_plane(input, p, chroma ? (width + round) / 2 : width,
                chroma ? (height + round) / 2 : height);
    }
  }
  Frame(const Frame &other) { *this = other; }
  Frame &operator=(const Frame &other) {
    record_ = other.record_;
    for (int p = 0; p < 4; ++p) {
      planes_[p] = other.planes_[p];
      if (record_.planes[p] != nullptr) record_.planes[p] = planes_[p].data() + first_sample(p);
    }
    return *this;
  }

  const NoxVideoFrame &get() const { return record_; }
  std::uint8_t *row(int p, std::int32_t y) {
    return record_.planes[p] + static_cast<std::ptrdiff_t>(y) * record_.strides[p];
  }
  void fill(Input *input) {
    for (std::vector<std::uint8_t> &plane : planes_) input->fill(plane.data(), plane.size());
  }
  // Every byte of all planes, padding included.
  bool same_bytes(const Frame &other) const {
    return std::equal(std::begin(planes_), std::end(planes_), std::begin(other.planes_));
  }

 private:
  // Now and then a plane behind the luma is told lower than the picture, or rows run upwards.
  void set_plane(Input *input, int p, std::int32_t width, std::int32_t height) {
    const std::uint8_t layout = input->next();
    if (layout % 32 == 31 && p != 0) height = std::max(height - 1, 0);
    const std::int32_t padding = layout % 4 == 0 ? input->next() % 40 : 0;
    const bool upwards = layout % 32 == 15;
    record_.plane_widths[p] = width;
    record_.plane_heights[p] = height;
    record_.strides[p] = upwards ? -(width + padding) : width + padding;
    planes_[p].resize(static_cast<std::size_t>(width + padding) * static_cast<std::size_t>(height));
    record_.planes[p] = planes_[p].data() + first_sample(p);
  }
  std::ptrdiff_t first_sample(int p) const {
    if (record_.strides[p] >= 0 || record_.plane_heights[p] < 1) return 0;
    return static_cast<std::ptrdiff_t>(record_.plane_heights[p] - 1) * -record_.strides[p];
  }

  NoxVideoFrame record_ = {};
  std::vector<std::uint8_t> planes_[4];
};

}  // namespace nox::fuzz

#endif  // FUZZ_FRAME_H_
