// Planar 4:2:0 frames whose planes end at unreadable pages.
#ifndef VECTORIZER_PLANAR_FRAME_H_
#define VECTORIZER_PLANAR_FRAME_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "support/guarded_plane.h"
#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::test {

// How the planes of a frame lie in memory.
struct PlaneLayout {
  std::int32_t luma_padding = 0;    // bytes behind each row of luma and alpha
  std::int32_t chroma_padding = 0;  // likewise for chroma
  bool truncated = false;           // odd sizes have width / 2 chroma columns, not (width + 1) / 2
};

class PlanarFrame {
 public:
  PlanarFrame(std::uint32_t format, std::int32_t width, std::int32_t height,
              const PlaneLayout &layout = {}) {
    frame_.format = format;
    frame_.width = width;
    frame_.height = height;
    frame_.n_planes = (format & kNoxFormatAlpha) != 0 ? 4 : 3;
    const std::int32_t round = layout.truncated ? 0 : 1;
    for (int p = 0; p < frame_.n_planes; ++p) {
      const bool chroma = p == 1 || p == 2;
      add_plane(p, chroma ? (width + round) / 2 : width, chroma ? (height + round) / 2 : height,
                chroma ? layout.chroma_padding : layout.luma_padding);
    }
  }

  const NoxVideoFrame &get() const { return frame_; }
  GuardedPlane &plane(int p) { return *planes_[static_cast<std::size_t>(p)]; }

  // Every byte of all planes, padding included.
  std::vector<std::uint8_t> bytes() const {
    std::vector<std::uint8_t> all;
    for (const auto &plane : planes_) {
      all.insert(all.end(), plane->data(), plane->data() + plane->size());
    }
    return all;
  }
  void set_bytes(const std::vector<std::uint8_t> &all) {
    const std::uint8_t *next = all.data();
    for (const auto &plane : planes_) {
      std::memcpy(plane->data(), next, plane->size());
      next += plane->size();
    }
  }
  void randomize(Random *random) {
    for (const auto &plane : planes_) random->fill(plane->data(), plane->size());
  }

 private:
  void add_plane(int p, std::int32_t width, std::int32_t height, std::int32_t padding) {
    const std::int32_t stride = width + padding;
    planes_.push_back(std::make_unique<GuardedPlane>(stride, height, stride));
    frame_.planes[p] = planes_.back()->data();
    frame_.strides[p] = stride;
    frame_.plane_widths[p] = width;
    frame_.plane_heights[p] = height;
  }

  NoxVideoFrame frame_{};
  std::vector<std::unique_ptr<GuardedPlane>> planes_;
};

}  // namespace nox::test

#endif  // VECTORIZER_PLANAR_FRAME_H_
