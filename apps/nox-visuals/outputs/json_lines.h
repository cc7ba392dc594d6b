// One JSON object a line, on standard output or in a file.
#ifndef NOX_VISUALS_OUTPUTS_JSON_LINES_H_
#define NOX_VISUALS_OUTPUTS_JSON_LINES_H_

#include <string>

#include "nox-visuals/outputs/descriptor_output.h"

namespace nox::app {

class JsonLines final : public DescriptorOutput {
 public:
  JsonLines(int descriptor, std::string name, std::string stream);

 private:
  std::string text_of(const Observation &observation) const override;

  const std::string stream_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_JSON_LINES_H_
