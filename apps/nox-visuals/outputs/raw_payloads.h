// The payloads of codes, byte by byte, with a line end after each.
#ifndef NOX_VISUALS_OUTPUTS_RAW_PAYLOADS_H_
#define NOX_VISUALS_OUTPUTS_RAW_PAYLOADS_H_

#include <string>

#include "nox-visuals/outputs/descriptor_output.h"

namespace nox::app {

class RawPayloads final : public DescriptorOutput {
 public:
  using DescriptorOutput::DescriptorOutput;

 private:
  std::string text_of(const Observation &observation) const override;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_RAW_PAYLOADS_H_
