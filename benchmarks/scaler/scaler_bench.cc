// Whole frames to the pen tracker's working size and the exact halving of a luma plane, each from
// memory that no cache holds.
#include "scaler/scaler.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "scaler/peers.h"
#include "support/frame_pool.h"
#include "support/random.h"
#include "support/target_runs.h"
#ifdef NOX_HAVE_LIBYUV
#include <libyuv/scale.h>
#endif

namespace nox::bench {
namespace {

constexpr ScalerSize kWorkSize = {448, 252};

std::size_t area(ScalerSize size) {
  return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

ScalerSize half(ScalerSize size) {
  return {size.width / 2, size.height / 2};
}

// I420 frames of one size, shared by everybody who is measured on it. Smooth waves with noise in
// the lower bits: no scaler's time depends on the samples, but pages have to exist.
FramePool &frames(ScalerSize size) {
  static std::map<std::pair<int, int>, std::unique_ptr<FramePool>> pools;
  std::unique_ptr<FramePool> &pool = pools[{size.width, size.height}];
  const std::size_t bytes = area(size) + 2 * area(half(size));
  if (pool == nullptr) {
    pool = std::make_unique<FramePool>(bytes, [bytes](std::uint8_t *frame, std::size_t index) {
      std::uint64_t state = index + 1;
      for (std::size_t i = 0; i < bytes; ++i) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        frame[i] = static_cast<std::uint8_t>(state >> 56);
      }
    });
  }
  return *pool;
}

// Luma and both chroma planes of a frame of `size`, each to the working size.
template <typename Scaling>
void scale_frame(benchmark::State &state, ScalerSize size) {
  FramePool &pool = frames(size);
  Scaling luma(size, kWorkSize);
  Scaling chroma(half(size), kWorkSize);
  std::vector<std::uint8_t> work(3 * area(kWorkSize));
  for (auto _ : state) {
    std::uint8_t *y = pool.next();
    std::uint8_t *u = y + area(size);
    std::uint8_t *v = u + area(half(size));
    luma.run(y, size.width, work.data(), kWorkSize.width);
    chroma.run(u, size.width / 2, work.data() + area(kWorkSize), kWorkSize.width);
    chroma.run(v, size.width / 2, work.data() + 2 * area(kWorkSize), kWorkSize.width);
    benchmark::ClobberMemory();
  }
}

template <typename Scaling>
void register_frame(const std::string &name, ScalerSize size) {
  benchmark::RegisterBenchmark(
      name.c_str(), [size](benchmark::State &state) { scale_frame<Scaling>(state, size); });
}

void register_frames(const std::string &name, ScalerSize size) {
  register_targets(name, [size](benchmark::State &state) { scale_frame<NoxScaling>(state, size); });
#ifdef NOX_HAVE_ZIMG
  register_frame<ZimgScaling>(name + "/zimg", size);
#endif
#ifdef NOX_HAVE_SWSCALE
  register_frame<SwscaleScaling>(name + "/swscale", size);
#endif
}

// The luma plane of a frame to half its size both ways, by run(src, dst).
void halve_luma(benchmark::State &state, ScalerSize size,
                const std::function<void(std::uint8_t *, std::uint8_t *)> &run) {
  FramePool &pool = frames(size);
  std::vector<std::uint8_t> dst(area(half(size)));
  for (auto _ : state) {
    run(pool.next(), dst.data());
    benchmark::ClobberMemory();
  }
}

void register_halving(const std::string &name, ScalerSize size) {
  const auto nox = [size](benchmark::State &state) {
    NoxScaling scaling(size, half(size));
    halve_luma(state, size, [&](std::uint8_t *src, std::uint8_t *dst) {
      scaling.run(src, size.width, dst, size.width / 2);
    });
  };
  register_targets(name, nox);
#ifdef NOX_HAVE_LIBYUV
  benchmark::RegisterBenchmark((name + "/libyuv").c_str(), [size](benchmark::State &state) {
    halve_luma(state, size, [size](std::uint8_t *src, std::uint8_t *dst) {
      libyuv::ScalePlane(src, size.width, size.width, size.height, dst, size.width / 2,
                         size.width / 2, size.height / 2, libyuv::kFilterBox);
    });
  });
#endif
}

[[maybe_unused]] const bool registered = [] {
  register_frames("frame 3840x2160 to 448x252", {3840, 2160});
  register_frames("frame 1920x1080 to 448x252", {1920, 1080});
  register_frames("frame 1280x720 to 448x252", {1280, 720});
  register_frames("frame 640x480 to 448x252", {640, 480});
  register_halving("luma 1920x1080 halved", {1920, 1080});
  return true;
}();

}  // namespace
}  // namespace nox::bench
