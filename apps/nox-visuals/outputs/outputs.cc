#include "nox-visuals/outputs/outputs.h"

#include <unistd.h>

#include "nox-visuals/outputs/background.h"
#include "nox-visuals/outputs/json_lines.h"
#include "nox-visuals/outputs/raw_payloads.h"

namespace nox::app {
namespace {

// A file waits until its lines are read; a live stream waits for nobody.
std::unique_ptr<Output> open_standard_output(bool raw, const std::string &stream, bool live) {
  constexpr const char *kName = "standard output";
  std::unique_ptr<Output> lines;
  if (raw) {
    lines = std::make_unique<RawPayloads>(STDOUT_FILENO, kName);
  } else {
    lines = std::make_unique<JsonLines>(STDOUT_FILENO, kName, stream);
  }
  if (!live) return lines;
  return std::make_unique<Background>(std::move(lines), kName);
}

}  // namespace

std::vector<std::unique_ptr<Output>> open_outputs(const OutputOptions &options,
                                                  const std::string &stream, bool live) {
  std::vector<std::unique_ptr<Output>> outputs;
  outputs.push_back(open_standard_output(options.raw, stream, live));
  return outputs;
}

bool any_output(const OutputOptions &options) {
  return !options.tuio.empty() || !options.osc.empty() || !options.mqtt.empty() ||
         !options.metrics.empty() || !options.plot.empty();
}

}  // namespace nox::app
