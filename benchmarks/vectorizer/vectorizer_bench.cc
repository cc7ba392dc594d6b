// A 1080p frame copied and drawn over itself, as the element does it: beside the copy alone, the
// same steps one after another, and an assembly of OpenCV functions. Frames come out of a pool that
// no cache holds.
#include <benchmark/benchmark.h>
#include <hwy/targets.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/frame_pool.h"
#include "vectorizer/mask_ring.h"
#include "vectorizer/pictures.h"
#include "vectorizer/stepwise.h"
#include "vectorizer/vectorizer.h"
#ifdef NOX_HAVE_OPENCV
#include "vectorizer/opencv_vectorizer.h"
#endif

namespace nox::bench {
namespace {

// Frames for an edge to last and to show.
constexpr int kWarmUp = 102;

// Frames of one kind out of the pool. Edges in the same places in all of them, so that some last.
FramePool &pool_of(Picture picture) {
  const auto make = [](Picture kind) {
    std::vector<std::uint8_t> first(kFrameBytes);
    fill_picture(first.data(), kind, 1);
    return std::make_unique<FramePool>(kFrameBytes, [&](std::uint8_t *block, std::size_t) {
      std::memcpy(block, first.data(), kFrameBytes);
    });
  };
  static const auto scene = make(Picture::kScene), noise = make(Picture::kNoise);
  return picture == Picture::kScene ? *scene : *noise;
}

using Process = std::function<void(const NoxVideoFrame &)>;

// Copies a frame out of the pool and hands the copy on.
void copy_and(benchmark::State &state, Picture picture, int warm_up, const Process &process) {
  FramePool &pool = pool_of(picture);
  const auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(kFrameBytes);
  const NoxVideoFrame frame = frame_in(copy.get());
  const auto step = [&] {
    std::memcpy(copy.get(), pool.next(), kFrameBytes);
    process(frame);
    benchmark::ClobberMemory();
  };
  for (int i = 0; i < warm_up; ++i) step();
  for (auto _ : state) step();
  state.SetItemsProcessed(state.iterations() * std::int64_t{kLumaBytes});
}

void run_memcpy(benchmark::State &state, Picture picture) {
  copy_and(state, picture, 1, [](const NoxVideoFrame &) {});
}

// `target` 0 lets the dispatcher choose.
void run_nox(benchmark::State &state, Picture picture, std::int64_t target) {
  hwy::SetSupportedTargetsForTest(target);
  VectorizerState *vectorizer = vectorizer_new();
  copy_and(state, picture, kWarmUp, [vectorizer](const NoxVideoFrame &frame) {
    vectorizer_process(vectorizer, &frame, &frame);
  });
  vectorizer_free(vectorizer);
  hwy::SetSupportedTargetsForTest(0);
}

void run_stepwise(benchmark::State &state, Picture picture) {
  StepwiseVectorizer vectorizer(kWidth, kHeight);
  copy_and(state, picture, 1, [&](const NoxVideoFrame &frame) { vectorizer.process(frame); });
}

#ifdef NOX_HAVE_OPENCV
void run_opencv(benchmark::State &state, Picture picture) {
  cv::setNumThreads(1);
  OpencvVectorizer vectorizer(kWidth, kHeight);
  copy_and(state, picture, kWarmUp, [&](const NoxVideoFrame &frame) { vectorizer.process(frame); });
}
#endif

void register_case(const std::string &name, Picture picture) {
  const auto add = [&name](const std::string &implementation, auto run, auto... arguments) {
    benchmark::RegisterBenchmark((name + "/" + implementation).c_str(), run, arguments...)
        ->Unit(benchmark::kMicrosecond);
  };
  add("nox", run_nox, picture, std::int64_t{0});
  for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
    add(std::string("nox:") + hwy::TargetName(target), run_nox, picture, target);
  }
  add("memcpy alone", run_memcpy, picture);
#ifdef NOX_HAVE_OPENCV
  add("opencv", run_opencv, picture);
#endif
  add("stepwise", run_stepwise, picture);
}

// Both rings for one frame: the two questions, from counters and from masks.
void run_rings(benchmark::State &state, bool compact) {
  MaskRing *in_all = mask_ring_new(kWidth, kHeight, 100);
  MaskRing *in_any = mask_ring_new(kWidth, kHeight, 500);
  BitMask *mask = bitmask_new(kWidth, kHeight), *answer = bitmask_new(kWidth, kHeight);
  const auto step = [&] {
    if (compact) {
      mask_ring_feed_and(in_all, mask, answer);
      mask_ring_feed_or(in_any, answer, answer);
    } else {
      bitmask_copy(mask_ring_next(in_all), mask);
      mask_ring_and(in_all, answer);
      bitmask_copy(mask_ring_next(in_any), answer);
      mask_ring_or(in_any, answer);
    }
    benchmark::ClobberMemory();
  };
  for (int i = 0; i < (compact ? 1 : 500); ++i) step();
  for (auto _ : state) step();
  for (BitMask *one : {mask, answer}) bitmask_free(one);
  for (MaskRing *one : {in_all, in_any}) mask_ring_free(one);
}

}  // namespace
}  // namespace nox::bench

int main(int argc, char **argv) {
  using nox::bench::Picture;
  benchmark::Initialize(&argc, argv);
  nox::bench::register_case("copy and draw scene/1920x1080", Picture::kScene);
  nox::bench::register_case("copy and draw noise/1920x1080", Picture::kNoise);
  benchmark::RegisterBenchmark("both rings/1920x1080/nox", nox::bench::run_rings, true);
  benchmark::RegisterBenchmark("both rings/1920x1080/600 masks", nox::bench::run_rings, false);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
