// What each reader of scan takes for a frame: a full HD scene with two codes, and one without.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "nox-visuals/readers/readers.h"
#include "scenes/qr_scene.h"
#include "video/nox_video_frame.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

NoxVideoFrame scene(const std::vector<std::string> &payloads) {
  NoxVideoFrame frame;
  nox_video_frame_alloc(&frame, kNoxFormatI420, kWidth, kHeight);
  nox::scenes::QrScene(kWidth, kHeight, payloads).render(0, &frame);
  return frame;
}

void read_frame(benchmark::State &state, const std::string &word, const NoxVideoFrame &frame) {
  const nox::app::Readers readers = nox::app::make_readers(word);
  const nox::qr::Luma luma{frame.planes[0], frame.strides[0], frame.width, frame.height};
  for (auto _ : state) benchmark::DoNotOptimize(nox::app::read_with_all(readers, luma));
}

}  // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  NoxVideoFrame codes = scene({"https://example.org/left", "right"});
  NoxVideoFrame desk = scene({});
  for (const std::string &word : nox::app::reader_words()) {
    const std::string name = word == "all" ? "nox" : word;  // what users run
    benchmark::RegisterBenchmark(("two_codes/1920x1080/" + name).c_str(), read_frame, word, codes);
    benchmark::RegisterBenchmark(("no_code/1920x1080/" + name).c_str(), read_frame, word, desk);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  nox_video_frame_free_planes(&codes);
  nox_video_frame_free_planes(&desk);
  return 0;
}
