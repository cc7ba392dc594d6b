// An output whose other side may stop taking, in a thread of its own.
#ifndef NOX_VISUALS_OUTPUTS_BACKGROUND_H_
#define NOX_VISUALS_OUTPUTS_BACKGROUND_H_

#include <memory>
#include <string>

#include "nox-visuals/outputs/output.h"

namespace nox::app {

// What is sent to a terminal that is stopped, or into a pipe that nobody reads, waits without end:
// here only this output's own queue grows full, and its oldest positions go and are counted.
class Background final : public Output {
 public:
  // `name` is for messages.
  Background(std::unique_ptr<Output> output, std::string name);
  ~Background() override;

  void take(const Observation &observation) override;
  void drain() override;
  std::uint64_t undelivered() const override;
  bool broken() const override;

 private:
  struct Shared;
  bool wait_until_empty();

  std::shared_ptr<Shared> shared_;  // with the thread, which may stay behind in a write
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_BACKGROUND_H_
