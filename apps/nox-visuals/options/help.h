// How --help looks: a screen of lines that a terminal of 80 columns holds.
#ifndef NOX_VISUALS_OPTIONS_HELP_H_
#define NOX_VISUALS_OPTIONS_HELP_H_

#include <CLI/CLI.hpp>

#include <string>

namespace nox::app {

class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter();

  // Without the values that flags stand for.
  std::string make_option_name(const CLI::Option *option, bool is_positional) const override;

  // Only what an option says of its value itself.
  std::string make_option_opts(const CLI::Option *option) const override;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_HELP_H_
