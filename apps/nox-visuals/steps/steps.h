// The steps of a command in their order.
#ifndef NOX_VISUALS_STEPS_STEPS_H_
#define NOX_VISUALS_STEPS_STEPS_H_

#include <functional>
#include <memory>
#include <vector>

#include "nox-visuals/options/code_options.h"
#include "nox-visuals/options/smoothing_options.h"
#include "nox-visuals/steps/step.h"

namespace nox::app {

// Surface, debounce, smooth, strokes. Throws UsageError when options say nothing that can be done.
std::vector<std::unique_ptr<Step>> make_pen_steps(bool mirrored, const SmoothingOptions &options);

// Unique, first. `stop` is called when nothing more is wanted.
std::vector<std::unique_ptr<Step>> make_code_steps(const CodeOptions &options,
                                                   std::function<void()> stop);

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_STEPS_H_
