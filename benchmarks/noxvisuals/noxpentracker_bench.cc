// noxpentracker as a whole, beside GStreamer's own way to its working size: everything runs on the
// pushing thread, so that time is CPU time.
#include <benchmark/benchmark.h>
#include <gst/gst.h>

#include "noxvisuals/element_run.h"
#include "scenes/pen_scene.h"
#include "video/nox_video_frame.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

nox::bench::BufferPool *scene_pool() {
  static nox::bench::BufferPool pool(
      nox::test::video_info(GST_VIDEO_FORMAT_I420, kWidth, kHeight), [](GstBuffer *buffer) {
        NoxVideoFrame frame;
        nox_video_frame_alloc(&frame, kNoxFormatI420, kWidth, kHeight);
        nox::scenes::PenScene(kWidth, kHeight).render(0, &frame);
        nox::test::write_picture(
            buffer, nox::test::video_info(GST_VIDEO_FORMAT_I420, kWidth, kHeight), frame);
        nox_video_frame_free_planes(&frame);
      });
  return &pool;
}

void run(benchmark::State &state, const char *description) {
  nox::bench::push_through(state, description, scene_pool());
}

}  // namespace

int main(int argc, char **argv) {
  gst_init(&argc, &argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RegisterBenchmark("pen_element/1920x1080/nox", run, "noxpentracker");
  benchmark::RegisterBenchmark("pen_element/1920x1080/videoscale", run,
                               "videoscale ! capsfilter caps=video/x-raw,width=448,height=252");
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
