// CPU that noxvectorizer takes in a pipeline, beside the effect that GStreamer's users reach for
// when they want edges: edgetv, which needs a converter to RGB in front. Whole pipelines on 1080p
// frames, each with the same source, which gives out one picture again and again, and the same
// sink; these two alone are measured too.
#include <benchmark/benchmark.h>
#include <gst/gst.h>

#include <string>

namespace {

constexpr int kFrames = 60;

bool run_to_its_end(GstElement *pipeline) {
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  GstBus *bus = gst_element_get_bus(pipeline);
  GstMessage *message = gst_bus_timed_pop_filtered(
      bus, GST_CLOCK_TIME_NONE, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  const bool ended = GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
  gst_message_unref(message);
  gst_object_unref(bus);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  return ended;
}

// An iteration is kFrames frames and what starting and stopping the pipeline takes. Everything runs
// on one streaming thread, so that time is CPU.
void run_pipeline(benchmark::State &state, const std::string &elements) {
  const std::string description =
      "videotestsrc num-buffers=1 ! video/x-raw,format=I420,width=1920,height=1080,framerate=30/1 "
      "! imagefreeze num-buffers=" +
      std::to_string(kFrames) + " ! " + elements + "fakesink sync=false";
  for (auto _ : state) {
    GstElement *pipeline = gst_parse_launch(description.c_str(), nullptr);
    if (!run_to_its_end(pipeline)) state.SkipWithError("the pipeline failed");
    gst_object_unref(pipeline);
  }
}

}  // namespace

int main(int argc, char **argv) {
  gst_init(&argc, &argv);
  benchmark::Initialize(&argc, argv);
  const auto add = [](const char *name, const char *elements) {
    benchmark::RegisterBenchmark(name, run_pipeline, elements)->Unit(benchmark::kMicrosecond);
  };
  add("pipeline/1920x1080/nox", "noxvectorizer ! ");
  add("pipeline/1920x1080/videoconvert ! edgetv", "videoconvert n-threads=1 ! edgetv ! ");
  add("pipeline/1920x1080/source and sink alone", "");
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
