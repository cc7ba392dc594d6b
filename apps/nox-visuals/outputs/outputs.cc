#include "nox-visuals/outputs/outputs.h"

#include <unistd.h>

#include "nox-visuals/outputs/json_lines.h"

namespace nox::app {

std::vector<std::unique_ptr<Output>> open_outputs(const OutputOptions & /*options*/,
                                                  const std::string &stream) {
  std::vector<std::unique_ptr<Output>> outputs;
  outputs.push_back(std::make_unique<JsonLines>(STDOUT_FILENO, "standard output", stream));
  return outputs;
}

}  // namespace nox::app
