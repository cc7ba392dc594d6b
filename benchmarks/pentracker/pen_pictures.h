// Pictures to measure the tracker on, and the masks that it makes of them.
#ifndef PENTRACKER_PEN_PICTURES_BENCH_H_
#define PENTRACKER_PEN_PICTURES_BENCH_H_

#include <cstddef>
#include <cstdint>

#include "scenes/pen_scene.h"
#include "support/frame_pool.h"
#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::bench {

inline constexpr int kWidth = 1920;
inline constexpr int kHeight = 1080;
inline constexpr std::size_t kLumaBytes = std::size_t{kWidth} * kHeight;
inline constexpr std::size_t kFrameBytes = kLumaBytes * 3 / 2;

// One block of memory as an I420 picture without padding.
inline NoxVideoFrame frame_in(std::uint8_t *block) {
  NoxVideoFrame frame{};
  frame.format = kNoxFormatI420;
  frame.width = kWidth;
  frame.height = kHeight;
  frame.n_planes = 3;
  std::uint8_t *const planes[] = {block, block + kLumaBytes, block + kLumaBytes * 5 / 4};
  for (int p = 0; p < 3; ++p) {
    frame.planes[p] = planes[p];
    frame.strides[p] = frame.plane_widths[p] = p == 0 ? kWidth : kWidth / 2;
    frame.plane_heights[p] = p == 0 ? kHeight : kHeight / 2;
  }
  return frame;
}

// Consecutive frames of a camera scene; frames of white noise.
inline FramePool &scene_pool() {
  static scenes::PenScene scene(kWidth, kHeight);
  static FramePool pool(kFrameBytes, [](std::uint8_t *block, std::size_t index) {
    NoxVideoFrame frame = frame_in(block);
    scene.render(static_cast<std::uint32_t>(index), &frame);
  });
  return pool;
}
inline FramePool &noise_pool() {
  static test::Random random(1);
  static FramePool pool(kFrameBytes,
                        [](std::uint8_t *block, std::size_t) { random.fill(block, kFrameBytes); });
  return pool;
}

}  // namespace nox::bench

#endif  // PENTRACKER_PEN_PICTURES_BENCH_H_
