// What it costs to hide parts of a frame of full HD from the tracker, beside a copy of the frame.
#include <benchmark/benchmark.h>

#include <cstring>

#include "nox-visuals/masks/blanking.h"
#include "nox-visuals/masks/picture_mask.h"
#include "support/frame_pool.h"
#include "support/full_hd.h"

namespace nox::bench {
namespace {

// Boxes of 160 by 90 pixels, a third of the picture: as much as a mask may hide.
app::PictureMask boxes() {
  app::PictureMask mask(kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      if ((x / 160 + y / 90) % 3 == 0) mask.hide(x, y);
    }
  }
  return mask;
}

FramePool *pool() {
  static FramePool frames(kFrameBytes, [](std::uint8_t *block, std::size_t index) {
    std::memset(block, static_cast<int>(60 + index % 100), kFrameBytes);
  });
  return &frames;
}

void hide(benchmark::State &state, std::uint8_t darker) {
  const app::Blanking blanking(boxes());
  for (auto _ : state) {
    NoxVideoFrame frame = frame_in(pool()->next());
    blanking.apply(&frame, darker);
    benchmark::ClobberMemory();
  }
}

// As behind a tee: the frame is copied first.
void hide_shared(benchmark::State &state) {
  const app::Blanking blanking(boxes());
  for (auto _ : state) {
    const std::uint8_t *shared = pool()->next();
    std::uint8_t *copy = pool()->next();
    std::memcpy(copy, shared, kFrameBytes);
    NoxVideoFrame frame = frame_in(copy);
    blanking.apply(&frame, 0);
    benchmark::ClobberMemory();
  }
}

void copy_frame(benchmark::State &state) {
  for (auto _ : state) {
    const std::uint8_t *from = pool()->next();
    std::memcpy(pool()->next(), from, kFrameBytes);
    benchmark::ClobberMemory();
  }
}

BENCHMARK_CAPTURE(hide, mask, std::uint8_t{0})->Name("hide a third 1920x1080/nox");
BENCHMARK(copy_frame)->Name("hide a third 1920x1080/memcpy");
BENCHMARK_CAPTURE(hide, both, std::uint8_t{40})->Name("hide a third and darken 1920x1080/nox");
BENCHMARK(copy_frame)->Name("hide a third and darken 1920x1080/memcpy");
BENCHMARK(hide_shared)->Name("hide a third of a shared frame 1920x1080/nox");
BENCHMARK(copy_frame)->Name("hide a third of a shared frame 1920x1080/memcpy");

}  // namespace
}  // namespace nox::bench
