// The file of --config: one "option = value" a line, # begins a comment.
#ifndef NOX_VISUALS_OPTIONS_CONFIG_FILE_H_
#define NOX_VISUALS_OPTIONS_CONFIG_FILE_H_

namespace CLI {
class App;
}

namespace nox::app {

// Gives a parsed command the options of the file that its --config names, if any. What the command
// line says holds against the file. Throws UsageError, which names the line.
void apply_config_file(CLI::App *command);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_CONFIG_FILE_H_
