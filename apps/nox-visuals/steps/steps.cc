#include "nox-visuals/steps/steps.h"

#include <cmath>
#include <cstdio>
#include <optional>
#include <utility>

#include "nox-visuals/errors.h"
#include "nox-visuals/steps/debounce.h"
#include "nox-visuals/steps/first_code.h"
#include "nox-visuals/steps/smooth.h"
#include "nox-visuals/steps/strokes.h"
#include "nox-visuals/steps/surface.h"
#include "nox-visuals/steps/unique_codes.h"

namespace nox::app {
namespace {

// None where smoothing is off.
std::optional<OneEuroConstants> smoothing_constants(const std::string &text) {
  if (text.empty() || text == "false") return std::nullopt;
  if (text == "usual" || text == "true") return kSmoothing;
  OneEuroConstants constants;
  int length = 0;
  const int found = std::sscanf(text.c_str(), "%lf,%lf,%lf%n", &constants.min_cutoff,
                                &constants.beta, &constants.derivative_cutoff, &length);
  const bool whole = found == 3 && static_cast<std::size_t>(length) == text.size();
  if (!whole || !(constants.min_cutoff > 0) || !(constants.beta >= 0) ||
      !(constants.derivative_cutoff > 0) || !std::isfinite(constants.min_cutoff + constants.beta) ||
      !std::isfinite(constants.derivative_cutoff)) {
    throw UsageError("--smooth=" + text +
                     ": expected FMIN,BETA,DCUT: a frequency above 0, a factor from 0 on, and a "
                     "frequency above 0");
  }
  return constants;
}

}  // namespace

std::vector<std::unique_ptr<Step>> make_pen_steps(bool mirrored, const SmoothingOptions &options) {
  std::vector<std::unique_ptr<Step>> steps;
  steps.push_back(std::make_unique<SurfaceStep>(mirrored));
  if (options.debounce_ms > 0) {
    steps.push_back(std::make_unique<Debounce>(std::llround(options.debounce_ms * 1e6)));
  }
  if (const auto constants = smoothing_constants(options.smooth)) {
    steps.push_back(std::make_unique<Smooth>(*constants));
  }
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
