// Pictures to measure the tracker on, and the masks that it makes of them.
#ifndef PENTRACKER_PEN_PICTURES_BENCH_H_
#define PENTRACKER_PEN_PICTURES_BENCH_H_

#include <cstddef>
#include <cstdint>

#include "scenes/pen_scene.h"
#include "support/frame_pool.h"
#include "support/full_hd.h"
#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::bench {

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
