// nox-visuals scan: reads QR codes.
#include <memory>
#include <utility>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/options/code_options.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/options/output_options.h"
#include "nox-visuals/options/source_options.h"
#include "nox-visuals/outputs/outputs.h"
#include "nox-visuals/steps/steps.h"
#include "nox-visuals/stream/chain.h"
#include "nox-visuals/stream/code_observer.h"

namespace nox::app {
namespace {

struct ScanOptions {
  SourceOptions source;
  CodeOptions codes;
  OutputOptions outputs;
};

int scan(const ScanOptions &options) {
  StreamPlan plan;
  plan.source = parse_source(options.source.word, options.source.frames);
  plan.word = options.source.word;
  plan.tail = "fakesink name=eye sync=false";
  plan.retry = options.source.retry;
  Chain chain;
  CodeObserver observer(make_readers(options.codes.reader), chain.counts(),
                        [&chain](Observation it) { chain.push(std::move(it)); });
  auto steps = make_code_steps(options.codes, [&chain] { chain.stop(); });
  return chain.run(std::move(plan), &observer, std::move(steps), [&options](bool live) {
    return open_outputs(options.outputs, stream_name(options.source), live);
  });
}

}  // namespace

void add_scan(CLI::App *program, Action *chosen) {
  Command command(program, "scan", "reads QR codes");
  const auto options = std::make_shared<ScanOptions>();
  add_source_options(&command, &options->source);
  add_code_options(&command, &options->codes);
  command.flag("--raw", &options->outputs.raw, "prints payloads instead of JSON");
  add_output_options(&command, &options->outputs);
  command.example("nox-visuals scan /dev/video0 --unique=5");
  command.when_chosen([chosen, options] { *chosen = [options] { return scan(*options); }; });
}

}  // namespace nox::app
