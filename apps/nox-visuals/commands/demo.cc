// nox-visuals demo: what the program sees in generated scenes, with pictures to look at.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/commands/pen_stream.h"
#include "nox-visuals/demo/clip.h"
#include "nox-visuals/demo/codes.h"
#include "nox-visuals/demo/drawing.h"
#include "nox-visuals/demo/pen_path.h"
#include "nox-visuals/demo/watched_edges.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/outputs/json_lines.h"
#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/whole_file.h"
#include "nox-visuals/steps/steps.h"
#include "nox-visuals/stream/chain.h"
#include "nox-visuals/stream/code_observer.h"
#include "nox-visuals/stream/module.h"
#include "nox-visuals/stream/signals.h"
#include "scenes/png.h"

namespace nox::app {
namespace {

using Outputs = std::vector<std::unique_ptr<Output>>;
using std::filesystem::path;

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr std::uint32_t kPenFrames = 450;
constexpr std::uint32_t kCodeFrames = 90;
constexpr std::size_t kCodes = 2;  // in the scene

// The lines that a command would print, in a file, and `seen`, which is told the same.
Outputs lines_and(const WholeFile &lines, const path &name, std::unique_ptr<Output> seen) {
  Outputs outputs;
  outputs.push_back(std::make_unique<JsonLines>(lines.descriptor(), name.string(), "demo"));
  outputs.push_back(std::move(seen));
  return outputs;
}

bool show_pen(const path &folder) {
  const std::string clip = folder / "pen.webm";
  demo::write_clip({"pen", kPenFrames, kWidth, kHeight}, clip);
  std::cout << "track follows the pen in " << clip << " (lines: pen.jsonl; path over the true one: "
            << "pen.png):" << std::endl;
  WholeFile lines(folder / "pen.jsonl");
  demo::PenPath pens;
  PenStream it;
  it.source = parse_source(clip, 0);
  it.word = clip;
  it.steps = make_pen_steps(false, {});
  it.open_outputs = [&](bool /*live*/) {
    return lines_and(lines, folder / "pen.jsonl", std::make_unique<demo::PenRecorder>(&pens));
  };
  if (follow_pen(std::move(it)) != kDone) return false;
  lines.keep();
  const demo::PenScore score = demo::compare(pens, kPenFrames);
  demo::print(std::cout, score, kWidth);
  demo::draw(pens, kPenFrames, kWidth, kHeight, folder / "pen.png");
  return score.found > 0;
}

int read_codes(const std::string &clip, const Chain::OpenOutputs &open_outputs) {
  StreamPlan plan;
  plan.source = parse_source(clip, 0);
  plan.word = clip;
  plan.tail = "fakesink name=eye sync=false";
  Chain chain;
  CodeObserver observer(make_readers("all"), chain.counts(),
                        [&chain](Observation it) { chain.push(std::move(it)); });
  return chain.run(std::move(plan), &observer, {}, open_outputs);
}

bool show_codes(const path &folder) {
  const std::string clip = folder / "qr.webm";
  demo::write_clip({"qr", kCodeFrames, kWidth, kHeight}, clip);
  std::cout << "scan reads " << clip << " (" << kCodeFrames << " frames; lines: qr.jsonl; codes in "
            << "the first one: qr.png):" << std::endl;
  WholeFile lines(folder / "qr.jsonl");
  demo::SeenCodes seen;
  const int status = read_codes(clip, [&](bool /*live*/) {
    return lines_and(lines, folder / "qr.jsonl", std::make_unique<demo::CodeRecorder>(&seen));
  });
  if (status != kDone) return false;
  lines.keep();
  demo::print(std::cout, seen.counts);
  demo::draw_codes(clip, seen.first, folder / "qr.png");
  std::cout << "noxqrdec, which the pipelines of others use, logs of the same clip:" << std::endl;
  const demo::PayloadCounts logged = demo::logged_payloads(clip);
  demo::print(std::cout, logged);
  return seen.counts.size() == kCodes && logged.size() == kCodes;
}

// Rows of `wanted` frames, or of the last one when the video is shorter, in a picture.
bool draw_rows(GstElement *source, const std::vector<int> &wanted,
               std::vector<demo::WatchedEdge> edges, const path &picture) {
  std::vector<scenes::Canvas> rows;
  demo::Player player(source);
  int frame = 0;
  while (frame < wanted.back() && !stopped_by_signal() && player.next()) {
    ++frame;
    const bool keep = std::find(wanted.begin(), wanted.end(), frame) != wanted.end();
    if (!keep && edges.empty()) continue;
    const demo::Picture input(player.input());
    const demo::Picture drawing(player.drawing());
    demo::watch(&edges, frame, input, drawing);
    if (keep) rows.push_back(demo::make_row(input, drawing));
  }
  if (frame == 0) throw StreamError("no frame came");
  if (frame < wanted.back()) {
    rows.push_back(demo::make_row(demo::Picture(player.input()), demo::Picture(player.drawing())));
  }
  std::cout << "  " << frame << " frames seen, " << rows.size() << " of them in "
            << picture.string() << '\n';
  scenes::write_png(demo::stack(rows), picture);
  return demo::report(std::cout, edges);
}

bool show_edges(const path &folder) {
  const std::vector<int> wanted = {99, 100, 629, 630, 700, 760};
  std::cout << "vectorize draws edges from their 100th frame on and holds them for 499 more:"
            << std::endl;
  Scene scene{"edges", static_cast<std::uint64_t>(wanted.back())};
  scene.live = false;
  return draw_rows(make_scene_bin(scene), wanted, demo::card_edges(wanted.back()),
                   folder / "vectorizer.png");
}

bool show_clip(const path &folder, const std::string &clip) {
  std::cout << "vectorize draws " << clip << ":" << std::endl;
  return draw_rows(make_source_bin(parse_source(clip, 0)), {99, 100, 700}, {},
                   folder / "vectorizer-clip.png");
}

int show_all(const std::string &name, const std::string &clip) {
  const path folder = name;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw OutputError(name + ": " + error.message());
  demand_module();
  bool right = show_pen(folder);
  right &= show_codes(folder);
  right &= show_edges(folder);
  if (!clip.empty()) right &= show_clip(folder, clip);
  if (!right) throw StreamError("demo: not all was seen that is in the scenes");
  return kDone;
}

struct DemoOptions {
  std::string folder = "demo-output";
  std::string clip;  // a video to draw too; empty: none
};

}  // namespace

void add_demo(CLI::App *program, Action *chosen) {
  Command command(program, "demo", "shows what it sees in generated scenes");
  const auto options = std::make_shared<DemoOptions>();
  command.option("FOLDER", &options->folder, "for pictures, clips and lines (demo-output)")
      .value("");
  command.option("--clip", &options->clip, "draws the edges of this video too").value("F");
  command.example("nox-visuals demo");
  command.when_chosen([chosen, options] {
    *chosen = [options] { return show_all(options->folder, options->clip); };
  });
}

}  // namespace nox::app
