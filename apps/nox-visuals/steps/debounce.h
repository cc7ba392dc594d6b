// Leaves out changes of pressed that do not last.
#ifndef NOX_VISUALS_STEPS_DEBOUNCE_H_
#define NOX_VISUALS_STEPS_DEBOUNCE_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "nox-visuals/steps/step.h"

namespace nox::app {

// A change counts from the first frame in which it has lasted for the given time; until then the
// pen is told as it was. A pen that was lost starts anew.
class Debounce : public Step {
 public:
  explicit Debounce(std::int64_t lasting_ns) : lasting_ns_(lasting_ns) {}

  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  bool settled(const Pen &pen);

  std::int64_t lasting_ns_;
  std::optional<bool> pressed_;             // as it is told; none while there is no pen
  std::optional<std::int64_t> changed_ns_;  // since when the pen says otherwise
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_DEBOUNCE_H_
