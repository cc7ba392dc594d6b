// How positions are steadied before they go out.
#ifndef NOX_VISUALS_OPTIONS_SMOOTHING_OPTIONS_H_
#define NOX_VISUALS_OPTIONS_SMOOTHING_OPTIONS_H_

#include <string>

#include "nox-visuals/options/command.h"

namespace nox::app {

struct SmoothingOptions {
  double debounce_ms = 0;  // 0: off
  std::string smooth;      // FMIN,BETA,DCUT or "usual"; empty: off
};

void add_smoothing_options(Command *command, SmoothingOptions *options);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_SMOOTHING_OPTIONS_H_
