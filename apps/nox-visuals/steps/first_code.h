// Lets only the first code pass, and asks for the end.
#ifndef NOX_VISUALS_STEPS_FIRST_CODE_H_
#define NOX_VISUALS_STEPS_FIRST_CODE_H_

#include <functional>
#include <vector>

#include "nox-visuals/steps/step.h"

namespace nox::app {

class FirstCode : public Step {
 public:
  // `stop` is called once, with the first code.
  explicit FirstCode(std::function<void()> stop);

  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  std::function<void()> stop_;
  bool seen_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_FIRST_CODE_H_
