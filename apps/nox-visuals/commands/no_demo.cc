// In place of demo.cc where the scenes are not built.
#include "nox-visuals/commands/commands.h"
#include "nox-visuals/errors.h"

namespace nox::app {

void add_demo(CLI::App *program, Action *chosen) {
  CLI::App *command = program->add_subcommand("demo", "needs libqrencode and libpng");
  command->callback([chosen] {
    *chosen = []() -> int {
      throw StreamError("demo: this program was built without the scenes (libqrencode and libpng)");
    };
  });
}

}  // namespace nox::app
