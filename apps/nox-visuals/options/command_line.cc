#include "nox-visuals/options/command_line.h"

#include <CLI/CLI.hpp>

#include <regex>

#include "nox-visuals/errors.h"
#include "nox-visuals/options/config_file.h"

namespace nox::app {
namespace {

// --help in lines that a terminal of 80 columns holds.
class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter() {
    constexpr std::size_t kNames = 28;  // columns, which leaves 52 for what they do
    column_width(kNames);
  }

  // Without the values that flags stand for.
  std::string make_option_name(const CLI::Option *option, bool is_positional) const override {
    static const std::regex values(R"(\{[^}]*\})");
    return std::regex_replace(CLI::Formatter::make_option_name(option, is_positional), values, "");
  }

  // Only what an option says of its value itself.
  std::string make_option_opts(const CLI::Option *option) const override {
    const std::string &text = option->get_option_text();
    if (text.empty() || text.starts_with("[=")) return text;
    return " " + text;
  }
};

}  // namespace

CommandLine::CommandLine(const std::string &name, const std::string &description,
                         const std::string &version)
    : program_(std::make_unique<CLI::App>(description, name)) {
  program_->formatter(std::make_shared<HelpFormatter>());
  program_->require_subcommand(1);
  program_->set_version_flag("--version", version);
}

CommandLine::~CommandLine() = default;

bool CommandLine::parse(int argc, char **argv) {
  try {
    program_->parse(argc, argv);
    for (CLI::App *command : program_->get_subcommands()) apply_config_file(command);
  } catch (const CLI::Success &help) {
    program_->exit(help);
    return false;
  } catch (const CLI::ParseError &error) {
    throw UsageError(error.what());
  }
  return true;
}

}  // namespace nox::app
