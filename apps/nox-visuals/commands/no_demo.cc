// In place of demo.cc where the scenes are not built.
#include "nox-visuals/commands/commands.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/command.h"

namespace nox::app {

void add_demo(CLI::App *program, Action *chosen) {
  Command command(program, "demo", "needs libqrencode and libpng");
  command.when_chosen([chosen] {
    *chosen = []() -> int {
      throw StreamError("demo: this program was built without the scenes (libqrencode and libpng)");
    };
  });
}

}  // namespace nox::app
