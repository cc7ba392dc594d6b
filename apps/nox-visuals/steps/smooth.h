// Takes the tremble out of the pen's way.
#ifndef NOX_VISUALS_STEPS_SMOOTH_H_
#define NOX_VISUALS_STEPS_SMOOTH_H_

#include <vector>

#include "nox-visuals/steps/one_euro_filter.h"
#include "nox-visuals/steps/step.h"

namespace nox::app {

// For speeds in widths a second, at 30 to 60 frames a second. docs/pen-tracking.md has the
// measurement that chose them.
inline constexpr OneEuroConstants kSmoothing{1.0, 120.0, 8.0};

// Both axes are filtered each for itself, in widths of the surface. A pen that was lost starts
// anew; presses and releases do not, since the pen does not jump there.
class Smooth : public Step {
 public:
  explicit Smooth(const OneEuroConstants &constants) : x_(constants), y_(constants) {}

  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  OneEuroFilter x_;
  OneEuroFilter y_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_SMOOTH_H_
