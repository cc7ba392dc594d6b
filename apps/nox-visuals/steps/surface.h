// Where on the surface the pen is that an event tells of.
#ifndef NOX_VISUALS_STEPS_SURFACE_H_
#define NOX_VISUALS_STEPS_SURFACE_H_

#include <array>

#include "nox-visuals/steps/step.h"

namespace nox::app {

// Where in the picture an event's x and y are, from the top left. The tracker counts x from the
// right edge, as for somebody who faces the camera, and both in whole samples of its 448 by 252
// pixels, whose centres lie half a sample on.
Point picture_place(const std::array<float, 2> &raw);

// The surface is the picture; `mirrored` is for a camera behind it, which sees left and right
// exchanged.
class SurfaceStep final : public Step {
 public:
  explicit SurfaceStep(bool mirrored) : mirrored_(mirrored) {}

  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  const bool mirrored_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_SURFACE_H_
