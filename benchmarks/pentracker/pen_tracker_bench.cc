// From a 1080p picture in cold memory to the pen's place, beside a copy of that picture and beside
// assemblies of general libraries that get as far as boxes.
#include "pentracker/pen_tracker.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "pentracker/pen_pictures.h"
#ifdef NOX_HAVE_OPENCV
#include "pentracker/peer_trackers.h"
#endif

namespace {

using nox::bench::frame_in;
using nox::bench::FramePool;

void track(benchmark::State &state, FramePool *pool) {
  PenTracker *tracker = pen_tracker_new();
  float x = 0;
  float y = 0;
  std::int32_t pressed = 0;
  for (auto _ : state) {
    NoxVideoFrame frame = frame_in(pool->next());
    benchmark::DoNotOptimize(pen_tracker_process(tracker, &frame, &frame, &x, &y, &pressed));
  }
  pen_tracker_free(tracker);
}

void copy(benchmark::State &state, FramePool *pool) {
  std::vector<std::uint8_t> target(nox::bench::kFrameBytes);
  for (auto _ : state) {
    std::memcpy(target.data(), pool->next(), target.size());
    benchmark::ClobberMemory();
  }
}

#ifdef NOX_HAVE_OPENCV
void find_peer_boxes(benchmark::State &state, FramePool *pool, nox::bench::PlaneScaler *scaler,
                     nox::bench::BoxFinder finder) {
  for (auto _ : state) {
    const NoxVideoFrame frame = frame_in(pool->next());
    benchmark::DoNotOptimize(nox::bench::peer_boxes(frame, scaler, finder));
  }
}

void register_peers(const std::string &name, FramePool *pool) {
  using nox::bench::BoxFinder;
  cv::setNumThreads(1);
  static const auto opencv = nox::bench::opencv_scaler();
  benchmark::RegisterBenchmark((name + "/opencv").c_str(), find_peer_boxes, pool, opencv.get(),
                               BoxFinder::kConnectedComponents);
#ifdef NOX_HAVE_ZIMG
  static const auto zimg = nox::bench::zimg_scaler();
  benchmark::RegisterBenchmark((name + "/zimg, opencv, findContours").c_str(), find_peer_boxes,
                               pool, zimg.get(), BoxFinder::kContours);
#endif
}
#endif

void register_all(const std::string &name, FramePool *pool) {
  benchmark::RegisterBenchmark((name + "/nox").c_str(), track, pool);
  benchmark::RegisterBenchmark((name + "/memcpy").c_str(), copy, pool);
#ifdef NOX_HAVE_OPENCV
  register_peers(name, pool);
#endif
}

}  // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  register_all("pen_tracker/scene 1920x1080", &nox::bench::scene_pool());
  register_all("pen_tracker/noise 1920x1080", &nox::bench::noise_pool());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
