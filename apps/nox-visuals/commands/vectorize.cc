// nox-visuals vectorize: turns video into drawings of its lasting edges.
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/options/output_options.h"
#include "nox-visuals/options/source_options.h"
#include "nox-visuals/outputs/outputs.h"
#include "nox-visuals/outputs/whole_file.h"
#include "nox-visuals/stream/chain.h"
#include "nox-visuals/stream/frame_counter.h"
#include "nox-visuals/stream/module.h"

namespace nox::app {
namespace {

struct VectorizeOptions {
  SourceOptions source;
  std::string output;   // F.webm or F.mkv; empty: none
  std::string preview;  // launch description of a sink; empty: none
};

constexpr const char *kElement = "noxvectorizer name=drawing ! ";
// Thin lines and flat ground: a constant quality, as fast as a camera.
constexpr const char *kEncoder =
    "videoconvert ! video/x-raw,format=I420 ! vp8enc deadline=1 cpu-used=4 threads=2 end-usage=cq "
    "cq-level=12 target-bitrate=20000000 ! ";

// The element that writes the container which the file's name asks for.
std::string muxer(const std::string &output) {
  const std::string ending = std::filesystem::path(output).extension().string();
  if (ending == ".webm") return "webmmux";
  if (ending == ".mkv") return "matroskamux";
  throw UsageError("--output takes a name that ends in .webm or .mkv, not '" + output + "'");
}

std::string file_branch(const std::string &output, int descriptor) {
  return kEncoder + muxer(output) + " ! fdsink name=" + kFileSink +
         " fd=" + std::to_string(descriptor);
}

// The drawing would take the place of what was drawn.
void demand_other_file(const Source &source, const std::string &output) {
  std::error_code none;  // of a file that is not there yet
  if (std::filesystem::equivalent(file_path(source), output, none)) {
    throw UsageError("--output " + output + ": is the source itself");
  }
}

std::string preview_branch(const std::string &sink) {
  return "videoconvert ! " + sink;
}

std::string tail(const VectorizeOptions &options, const std::optional<WholeFile> &file) {
  if (!file) return kElement + preview_branch(options.preview);
  if (options.preview.empty()) return kElement + file_branch(options.output, file->descriptor());
  return kElement + ("tee name=both ! queue ! " + preview_branch(options.preview)) +
         "  both. ! queue ! " + file_branch(options.output, file->descriptor());
}

int vectorize(const VectorizeOptions &options) {
  if (options.output.empty() && options.preview.empty()) {
    throw UsageError("vectorize needs --output or --preview");
  }
  if (!options.output.empty()) muxer(options.output);
  demand_module();
  StreamPlan plan;
  plan.source = parse_source(options.source.word, options.source.frames);
  plan.word = options.source.word;
  // A file holds one stream, from its beginning to its end.
  if (options.output.empty()) plan.retry = options.source.retry;
  std::optional<WholeFile> file;
  if (!options.output.empty()) {
    demand_other_file(plan.source, options.output);
    file.emplace(options.output);
  }
  plan.tail = tail(options, file);
  plan.file = options.output;
  Chain chain;
  FrameCounter counter("drawing", chain.counts());
  const int status = chain.run(std::move(plan), &counter, {}, [&options](bool live) {
    return open_outputs({}, stream_name(options.source), live);
  });
  if (file) file->keep();
  return status;
}

}  // namespace

void add_vectorize(CLI::App *program, Action *chosen) {
  Command command(program, "vectorize", "draws lasting edges");
  const auto options = std::make_shared<VectorizeOptions>();
  add_source_options(&command, &options->source);
  command.option("--output", &options->output, "writes the drawing (VP8) to this file")
      .value("F.webm|F.mkv");
  command.flag("--preview{autovideosink}", &options->preview, "shows the drawing");
  command.example("nox-visuals vectorize clip.mp4 --output drawing.webm");
  command.when_chosen([chosen, options] { *chosen = [options] { return vectorize(*options); }; });
}

}  // namespace nox::app
