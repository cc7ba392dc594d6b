// nox-visuals track: follows a pen of light.
#include <glib.h>

#include <memory>
#include <utility>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/output_options.h"
#include "nox-visuals/options/smoothing_options.h"
#include "nox-visuals/options/source_options.h"
#include "nox-visuals/outputs/outputs.h"
#include "nox-visuals/steps/steps.h"
#include "nox-visuals/stream/delivery.h"
#include "nox-visuals/stream/pen_observer.h"
#include "nox-visuals/stream/stream.h"

namespace nox::app {
namespace {

struct TrackOptions {
  SourceOptions source;
  SmoothingOptions smoothing;
  OutputOptions outputs;
  bool mirror = false;
};

constexpr const char *kTail = "noxpentracker name=tracker ! fakesink sync=false";

StreamPlan make_plan(const SourceOptions &options) {
  StreamPlan plan;
  plan.source = parse_source(options.word, options.frames);
  plan.word = options.word;
  plan.tail = kTail;
  plan.retry = options.retry;
  return plan;
}

// Brings what a stream's tracker sees to the outputs.
int follow(StreamPlan plan, std::vector<std::unique_ptr<Step>> steps,
           std::vector<std::unique_ptr<Output>> outputs) {
  Counts counts;
  Stream stream(&counts);
  Delivery delivery(std::move(steps), std::move(outputs), &counts, [&stream] { stream.stop(); });
  PenObserver observer(&counts, [&delivery](Observation it) { delivery.push(std::move(it)); });
  plan.started = [&observer](GstElement *pipeline) {
    const GstPointer<GstElement> tracker(gst_bin_get_by_name(GST_BIN(pipeline), "tracker"));
    observer.attach(tracker.get());
  };
  plan.gone = [&observer] { observer.detach(); };
  stream.open(std::move(plan));
  if (stream.live()) {
    observer.tell_wall_time();
    delivery.drop_when_full();
  }
  const std::string failure = stream.run();
  delivery.finish(observer.now());
  if (!failure.empty()) throw StreamError(failure);
  return delivery.output_broken() ? kOutputFailed : kDone;
}

int track(const TrackOptions &options) {
  StreamPlan plan = make_plan(options.source);
  auto steps = make_pen_steps(options.mirror, options.smoothing);
  auto outputs = open_outputs(options.outputs, stream_name(options.source));
  return follow(std::move(plan), std::move(steps), std::move(outputs));
}

}  // namespace

void add_track(CLI::App *program, Action *chosen) {
  CLI::App *command = program->add_subcommand("track", "follows a pen of light");
  const auto options = std::make_shared<TrackOptions>();
  add_source_options(command, &options->source);
  command->add_flag("--mirror,!--no-mirror", options->mirror, "for a camera behind the surface");
  add_smoothing_options(command, &options->smoothing);
  add_pen_output_options(command, &options->outputs);
  add_output_options(command, &options->outputs);
  command->footer("Example: nox-visuals track /dev/video0 --tuio localhost");
  command->callback([chosen, options] { *chosen = [options] { return track(*options); }; });
}

}  // namespace nox::app
