// The commands of the program, one file each.
#ifndef NOX_VISUALS_COMMANDS_COMMANDS_H_
#define NOX_VISUALS_COMMANDS_COMMANDS_H_

#include <functional>

namespace CLI {
class App;
}

namespace nox::app {

// What the chosen command does, once its options are read. It returns the program's exit status, or
// throws what errors.h names.
using Action = std::function<int()>;

// Each adds its command, with its options, to the program; when the command line chooses it,
// `chosen` becomes what it does.
using AddCommand = void (*)(CLI::App *program, Action *chosen);

void add_devices(CLI::App *program, Action *chosen);
void add_demo(CLI::App *program, Action *chosen);
void add_doctor(CLI::App *program, Action *chosen);
void add_scan(CLI::App *program, Action *chosen);
void add_track(CLI::App *program, Action *chosen);
void add_tune(CLI::App *program, Action *chosen);
void add_vectorize(CLI::App *program, Action *chosen);

}  // namespace nox::app

#endif  // NOX_VISUALS_COMMANDS_COMMANDS_H_
