#include "nox-visuals/steps/steps.h"

#include "nox-visuals/steps/strokes.h"
#include "nox-visuals/steps/surface.h"

namespace nox::app {

std::vector<std::unique_ptr<Step>> make_pen_steps(bool mirrored,
                                                  const SmoothingOptions & /*options*/) {
  std::vector<std::unique_ptr<Step>> steps;
  steps.push_back(std::make_unique<SurfaceStep>(mirrored));
  steps.push_back(std::make_unique<StrokesStep>());
  return steps;
}

}  // namespace nox::app
