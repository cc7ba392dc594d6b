// The words behind the program's name: the command that they choose, with its options.
#ifndef NOX_VISUALS_OPTIONS_COMMAND_LINE_H_
#define NOX_VISUALS_OPTIONS_COMMAND_LINE_H_

#include <memory>
#include <string>

namespace CLI {
class App;
}

namespace nox::app {

class CommandLine {
 public:
  // `version` is what --version says.
  CommandLine(const std::string &name, const std::string &description, const std::string &version);
  ~CommandLine();
  CommandLine(const CommandLine &) = delete;
  CommandLine &operator=(const CommandLine &) = delete;

  // For the commands to add themselves to.
  CLI::App *program() { return program_.get(); }

  // Reads the words, and the file that the chosen command's --config names. False when they asked
  // for help or the version, which is said then. Throws UsageError.
  bool parse(int argc, char **argv);

 private:
  std::unique_ptr<CLI::App> program_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_COMMAND_LINE_H_
