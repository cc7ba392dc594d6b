#include "nox-visuals/options/smoothing_options.h"

namespace nox::app {

void add_smoothing_options(Command *command, SmoothingOptions *options) {
  command->option("--debounce", &options->debounce_ms, "a change of pressed counts if it lasts")
      .value("MS")
      .not_negative();
  command->flag("--smooth{usual}", &options->smooth, "takes out tremble")
      .value("[=FMIN,BETA,DCUT]");
}

}  // namespace nox::app
