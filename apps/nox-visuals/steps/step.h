// What happens to observations between the stream and the outputs: one class a step.
#ifndef NOX_VISUALS_STEPS_STEP_H_
#define NOX_VISUALS_STEPS_STEP_H_

#include <vector>

#include "nox-visuals/observation.h"

namespace nox::app {

// Has state, knows no clock but the observations' own, and is used by one thread.
class Step {
 public:
  Step() = default;
  virtual ~Step() = default;
  Step(const Step &) = delete;
  Step &operator=(const Step &) = delete;

  // Appends to `out` what becomes of `in`: nothing, itself, or several observations.
  virtual void take(const Observation &in, std::vector<Observation> *out) = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_STEP_H_
