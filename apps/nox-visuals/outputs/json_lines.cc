#include "nox-visuals/outputs/json_lines.h"

#include <utility>

namespace nox::app {

JsonLines::JsonLines(int descriptor, std::string name, std::string stream)
    : DescriptorOutput(descriptor, std::move(name)), stream_(std::move(stream)) {}

std::string JsonLines::text_of(const Observation &observation) const {
  return to_json(observation, stream_) + "\n";
}

}  // namespace nox::app
