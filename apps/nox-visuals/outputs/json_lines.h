// One JSON object a line, on standard output or in a file.
#ifndef NOX_VISUALS_OUTPUTS_JSON_LINES_H_
#define NOX_VISUALS_OUTPUTS_JSON_LINES_H_

#include <cstdint>
#include <string>

#include "nox-visuals/outputs/output.h"

namespace nox::app {

// Each line is written at once. When that fails (nobody reads any more, the disk is full) it is
// said once, and nothing more is written.
class JsonLines final : public Output {
 public:
  // Writes to `descriptor`, which stays the caller's; `name` is for messages.
  JsonLines(int descriptor, std::string name, std::string stream);

  void take(const Observation &observation) override;
  std::uint64_t undelivered() const override { return undelivered_; }
  bool broken() const override { return broken_; }

 private:
  bool write_all(const std::string &line);

  const int descriptor_;
  const std::string name_;
  const std::string stream_;
  std::uint64_t undelivered_ = 0;
  bool broken_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_JSON_LINES_H_
