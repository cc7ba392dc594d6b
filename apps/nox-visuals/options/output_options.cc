#include "nox-visuals/options/output_options.h"

namespace nox::app {

// An output's options stand here with the output: one line each.
void add_pen_output_options(CLI::App * /*command*/, OutputOptions * /*options*/) {}

void add_output_options(CLI::App * /*command*/, OutputOptions * /*options*/) {}

}  // namespace nox::app
