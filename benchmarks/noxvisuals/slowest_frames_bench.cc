// CPU time of the slowest frame of each stream that was found to cost noxpentracker most.
#include <benchmark/benchmark.h>
#include <gst/gst.h>

#include <algorithm>
#include <string>
#include <vector>

#include "noxvisuals/dotted_stream.h"
#include "pentracker/slowest_frames.h"

namespace {

constexpr int kFrames = 5;

void slowest_frame(benchmark::State &state, const nox::test::DottedPicture &dots) {
  for (auto _ : state) {
    const std::vector<double> times = nox::bench::time_dots(dots, kFrames);
    state.SetIterationTime(*std::max_element(times.begin() + 1, times.end()) / 1e3);
  }
}

}  // namespace

int main(int argc, char **argv) {
  gst_init(nullptr, nullptr);
  benchmark::Initialize(&argc, argv);
  int number = 0;
  for (const nox::test::DottedPicture &dots : nox::test::kSlowestFrames) {
    const std::string name = "slowest frames/" + std::to_string(++number) + "/nox";
    benchmark::RegisterBenchmark(name.c_str(), slowest_frame, dots)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
