// Frames in hostile memory, filled with a picture and compared with one.
#ifndef SCALER_FRAME_FIXTURE_H_
#define SCALER_FRAME_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "scaler/scaler_plain.h"
#include "support/guarded_plane.h"
#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::test {

enum class Content { kNoise, kExtremes, kCheckers };

inline Picture make_picture(int width, int height, Content content, Random &random) {
  Picture picture(width, height);
  random.fill(picture.samples.data(), picture.samples.size());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (content == Content::kExtremes) picture.at(x, y) = picture.at(x, y) < 128 ? 0 : 255;
      // Bars two samples wide, one way or the other, overshoot the most.
      if (content == Content::kCheckers) {
        const bool upright = y / 64 % 2 == 0;
        picture.at(x, y) = (upright ? x : y) / 2 % 2 == 0 ? 0 : 255;
      }
    }
  }
  return picture;
}

// A frame with up to four planes, each of which ends at an unreadable page.
class GuardedFrame {
 public:
  static constexpr std::uint8_t kUntouched = 0xA5;

  GuardedFrame() = default;

  // Adds a plane, filled with kUntouched, `padding` bytes between the end of a row and the next.
  GuardedPlane &add(int width, int height, int padding) {
    const auto p = planes_.size();
    planes_.push_back(std::make_unique<GuardedPlane>(width, height, width + padding));
    GuardedPlane &plane = *planes_.back();
    plane.fill(kUntouched);
    if (p == 0) {
      frame_.width = width;
      frame_.height = height;
    }
    frame_.n_planes = static_cast<std::int32_t>(p + 1);
    frame_.planes[p] = plane.data();
    frame_.strides[p] = plane.stride();
    frame_.plane_widths[p] = width;
    frame_.plane_heights[p] = height;
    return plane;
  }
  void add(const Picture &picture, int padding) {
    GuardedPlane &plane = add(picture.width, picture.height, padding);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        plane.row(y)[x] = static_cast<std::uint8_t>(picture.at(x, y));
      }
    }
  }

  NoxVideoFrame &record() { return frame_; }

  // Every sample of plane p is the picture's, and no byte of its padding was written. An empty
  // picture means that nothing was.
  void expect(std::size_t p, const Picture &picture) const {
    const GuardedPlane &plane = *planes_[p];
    const bool empty = picture.samples.empty();
    ASSERT_TRUE(empty || (picture.width == plane.width() && picture.height == plane.height()));
    for (int y = 0; y < plane.height(); ++y) {
      const int bytes = y + 1 < plane.height() ? plane.stride() : plane.width();
      for (int x = 0; x < bytes; ++x) {
        const int wanted = empty || x >= plane.width() ? kUntouched : picture.at(x, y);
        ASSERT_EQ(int{plane.row(y)[x]}, wanted) << "plane " << p << ", x " << x << ", y " << y;
      }
    }
  }

 private:
  NoxVideoFrame frame_ = {};
  std::vector<std::unique_ptr<GuardedPlane>> planes_;
};

}  // namespace nox::test

#endif  // SCALER_FRAME_FIXTURE_H_
