#include "nox-visuals/steps/steps.h"

#include <utility>

#include "nox-visuals/steps/first_code.h"
#include "nox-visuals/steps/strokes.h"
#include "nox-visuals/steps/surface.h"
#include "nox-visuals/steps/unique_codes.h"

namespace nox::app {

std::vector<std::unique_ptr<Step>> make_pen_steps(bool mirrored,
                                                  const SmoothingOptions & /*options*/) {
  std::vector<std::unique_ptr<Step>> steps;
  steps.push_back(std::make_unique<SurfaceStep>(mirrored));
  steps.push_back(std::make_unique<StrokesStep>());
  return steps;
}

std::vector<std::unique_ptr<Step>> make_code_steps(const CodeOptions &options,
                                                   std::function<void()> stop) {
  std::vector<std::unique_ptr<Step>> steps;
  if (options.unique) steps.push_back(std::make_unique<UniqueCodes>(options.pause));
  if (options.one) steps.push_back(std::make_unique<FirstCode>(std::move(stop)));
  return steps;
}

}  // namespace nox::app
