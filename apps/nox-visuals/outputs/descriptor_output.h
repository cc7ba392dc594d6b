// Text on standard output or in a file, of whatever form.
#ifndef NOX_VISUALS_OUTPUTS_DESCRIPTOR_OUTPUT_H_
#define NOX_VISUALS_OUTPUTS_DESCRIPTOR_OUTPUT_H_

#include <cstdint>
#include <string>

#include "nox-visuals/outputs/output.h"

namespace nox::app {

// What belongs to an observation is written at once. When that fails (nobody reads any more, the
// disk is full) it is said once, and nothing more is written.
class DescriptorOutput : public Output {
 public:
  // Writes to `descriptor`, which stays the caller's; `name` is for messages.
  DescriptorOutput(int descriptor, std::string name);

  void take(const Observation &observation) override;
  std::uint64_t undelivered() const override { return undelivered_; }
  bool broken() const override { return broken_; }

 private:
  // What is written of an observation, line ends and all; nothing of some.
  virtual std::string text_of(const Observation &observation) const = 0;
  bool write_all(const std::string &text);

  const int descriptor_;
  const std::string name_;
  const bool is_terminal_;  // where the line of progress may stand
  std::uint64_t undelivered_ = 0;
  bool broken_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_DESCRIPTOR_OUTPUT_H_
