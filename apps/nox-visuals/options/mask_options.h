// What is hidden from the tracker.
#ifndef NOX_VISUALS_OPTIONS_MASK_OPTIONS_H_
#define NOX_VISUALS_OPTIONS_MASK_OPTIONS_H_

#include <string>

#include "nox-visuals/options/command.h"

namespace nox::app {

struct MaskOptions {
  std::string mask;          // a picture; empty: none
  double learn_seconds = 0;  // 0: nothing is learned
  std::string output;        // where the learned mask goes; empty: nowhere
  std::string darken = "0";  // a number of 0 to 255, or "auto"
};

// Adds --mask, --mask-learn, --mask-output and --darken.
void add_mask_options(Command *command, MaskOptions *options);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_MASK_OPTIONS_H_
