// nox-visuals track: follows a pen of light.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/commands/pen_stream.h"
#include "nox-visuals/commands/track_files.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/camera_options.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/options/mask_options.h"
#include "nox-visuals/options/output_options.h"
#include "nox-visuals/options/smoothing_options.h"
#include "nox-visuals/options/source_options.h"
#include "nox-visuals/outputs/outputs.h"
#include "nox-visuals/steps/steps.h"

namespace nox::app {
namespace {

struct TrackOptions {
  std::vector<std::string> words;  // SOURCE...
  SourceOptions source;
  SmoothingOptions smoothing;
  OutputOptions outputs;
  bool mirror = false;
  MaskOptions masks;
  bool recover = true;
  bool swap_colours = false;
  CameraOptions camera;
  std::string preview;     // launch description of a sink; empty: none
  std::string output_dir;  // empty: lines go to standard output
  bool again = false;
};

PenStream make_pen_stream(const TrackOptions &options, const std::string &word) {
  PenStream it;
  it.source = parse_source(word, options.source.frames);
  use_camera(options.camera, &it.source);
  it.word = word;
  it.retry = options.source.retry;
  it.masks = options.masks;
  it.recover = options.recover;
  it.swap_colours = options.swap_colours;
  if (!options.preview.empty()) it.preview = options.preview;
  it.steps = make_pen_steps(options.mirror, options.smoothing);
  return it;
}

int track_one(const TrackOptions &options) {
  if (options.words.size() != 1) throw UsageError("several sources need --output-dir");
  if (options.again) throw UsageError("--again belongs to --output-dir");
  SourceOptions source = options.source;
  source.word = options.words.front();
  PenStream it = make_pen_stream(options, source.word);
  it.open_outputs = [&options, name = stream_name(source)](bool live) {
    return open_outputs(options.outputs, name, live);
  };
  return follow_pen(std::move(it));
}

int track_to_files(const TrackOptions &options) {
  if (any_output(options.outputs) || !options.preview.empty()) {
    throw UsageError("--output-dir writes files and goes with no other output");
  }
  if (!options.source.name.empty() && options.words.size() > 1) {
    throw UsageError("--name is for one source");
  }
  return track_files(
      {options.words, options.source.name, options.output_dir, options.again},
      [&options](const std::string &word) { return make_pen_stream(options, word); });
}

int track(const TrackOptions &options) {
  return options.output_dir.empty() ? track_one(options) : track_to_files(options);
}

}  // namespace

void add_track(CLI::App *program, Action *chosen) {
  Command command(program, "track", "follows a pen of light");
  const auto options = std::make_shared<TrackOptions>();
  command.option("SOURCE", &options->words, "a file, a URI, /dev/videoN, test:pen, gst:...")
      .required();
  add_stream_options(&command, &options->source);
  command.flag("--mirror,!--no-mirror", &options->mirror, "for a camera behind the surface");
  command.flag("--swap-colours", &options->swap_colours, "for a pen that hovers red");
  add_camera_options(&command, &options->camera);
  command.flag("--recover,!--no-recover", &options->recover,
               "picks up a pen that one bad frame lost; on");
  add_mask_options(&command, &options->masks);
  add_smoothing_options(&command, &options->smoothing);
  add_pen_output_options(&command, &options->outputs);
  add_output_options(&command, &options->outputs);
  command.flag("--preview{autovideosink}", &options->preview, "shows the picture and the pen")
      .value("[=SINK]");
  command.option("--output-dir", &options->output_dir, "writes D/NAME.jsonl for each file")
      .value("D");
  command.flag("--again", &options->again, "does files anew that are done");
  command.example("nox-visuals track /dev/video0 --tuio localhost");
  command.when_chosen([chosen, options] { *chosen = [options] { return track(*options); }; });
}

}  // namespace nox::app
