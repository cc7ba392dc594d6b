// Pipelines as benchmarks: the CPU that they take for a frame. A source alone is a pipeline too, so
// that what elements take is the time of a pipeline with them less that of its source alone.
#ifndef NOXVISUALS_PIPELINE_RUN_H_
#define NOXVISUALS_PIPELINE_RUN_H_

#include <benchmark/benchmark.h>
#include <gst/gst.h>
#include <time.h>

#include <initializer_list>
#include <string>

#include "support/pipeline.h"

namespace nox::bench {

// A pipeline's start is not measured: until the pen tracker's history of 30 frames is full, its
// memory grows.
inline constexpr int kFramesAhead = 35;
inline constexpr int kFramesMeasured = 40;
inline constexpr int kPipelineFrames = kFramesAhead + kFramesMeasured + 1;

// 1080p frames of one of videotestsrc's patterns: one picture again and again, which costs next to
// nothing, or a new picture for each frame, drawn `speed` samples further to the side.
inline std::string still_source(const std::string &pattern) {
  return "videotestsrc num-buffers=1 pattern=" + pattern +
         " ! video/x-raw,format=I420,width=1920,height=1080,framerate=30/1 ! "
         "imagefreeze num-buffers=" +
         std::to_string(kPipelineFrames);
}
inline std::string moving_source(const std::string &pattern, int speed) {
  return "videotestsrc num-buffers=" + std::to_string(kPipelineFrames) + " pattern=" + pattern +
         " horizontal-speed=" + std::to_string(speed) +
         " ! video/x-raw,format=I420,width=1920,height=1080,framerate=30/1";
}

struct PipelineRun {
  std::string name;      // CASE/IMPLEMENTATION
  std::string source;    // its description
  std::string elements;  // between source and sink; none for the source alone
};

// CPU time of this process, that of all its threads, in seconds.
inline double process_seconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Looks at the clock as frames arrive at the sink.
struct FrameClock {
  int frames = 0;
  double start = 0;
  double end = 0;
};

inline GstPadProbeReturn count_frame(GstPad * /*pad*/, GstPadProbeInfo * /*info*/, gpointer data) {
  auto *clock = static_cast<FrameClock *>(data);
  if (clock->frames == kFramesAhead) clock->start = process_seconds();
  if (clock->frames == kFramesAhead + kFramesMeasured) clock->end = process_seconds();
  ++clock->frames;
  return GST_PAD_PROBE_OK;
}

// An iteration is one pipeline. Its time is the CPU for one frame.
inline void measure_pipeline(benchmark::State &state, const PipelineRun &run) {
  const std::string elements = run.elements.empty() ? "" : run.elements + " ! ";
  const std::string description = run.source + " ! " + elements + "fakesink name=sink";
  for (auto _ : state) {
    FrameClock clock;
    std::string error = test::run_pipeline(description, [&clock](GstElement *pipeline) {
      const test::ObjectPtr<GstElement> sink(gst_bin_get_by_name(GST_BIN(pipeline), "sink"));
      const test::ObjectPtr<GstPad> pad(gst_element_get_static_pad(sink.get(), "sink"));
      gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, count_frame, &clock, nullptr);
    });
    if (error.empty() && clock.frames != kPipelineFrames) error = "frames are missing";
    if (!error.empty()) state.SkipWithError(error.c_str());
    state.SetIterationTime((clock.end - clock.start) / kFramesMeasured);
  }
}

// What a program that measures pipelines does.
inline int measure_pipelines(int argc, char **argv, std::initializer_list<PipelineRun> runs) {
  gst_init(&argc, &argv);
  benchmark::Initialize(&argc, argv);
  for (const PipelineRun &run : runs) {
    benchmark::RegisterBenchmark(run.name.c_str(), measure_pipeline, run)
        ->Iterations(1)  // of as many repetitions as are asked for
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace nox::bench

#endif  // NOXVISUALS_PIPELINE_RUN_H_
