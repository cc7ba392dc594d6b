// Counts presses: what a pen writes between two of them is one stroke.
#ifndef NOX_VISUALS_STEPS_STROKES_H_
#define NOX_VISUALS_STEPS_STROKES_H_

#include <cstdint>

#include "nox-visuals/steps/step.h"

namespace nox::app {

// Gives each pen its Pen::stroke. A loss ends a stroke, unless the next pen is that one recovered.
class StrokesStep final : public Step {
 public:
  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  std::uint64_t next_ = 1;  // of the stroke that is written, or will be
  bool writing_ = false;    // the pen was pressed when it was seen last
  bool lost_ = false;       // since then
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_STROKES_H_
