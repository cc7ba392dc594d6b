#include "nox-visuals/options/smoothing_options.h"

namespace nox::app {

void add_smoothing_options(CLI::App *command, SmoothingOptions *options) {
  command->add_option("--debounce", options->debounce_ms, "a change of pressed counts if it lasts")
      ->option_text("MS")
      ->check(CLI::NonNegativeNumber);
  command->add_flag("--smooth{usual}", options->smooth, "takes out tremble")
      ->option_text("[=FMIN,BETA,DCUT]");
}

}  // namespace nox::app
