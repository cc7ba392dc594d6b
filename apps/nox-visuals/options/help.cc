#include "nox-visuals/options/help.h"

#include <regex>

namespace nox::app {

HelpFormatter::HelpFormatter() {
  constexpr std::size_t kNames = 28;  // columns, which leaves 52 for what they do
  column_width(kNames);
}

std::string HelpFormatter::make_option_name(const CLI::Option *option, bool is_positional) const {
  static const std::regex values(R"(\{[^}]*\})");
  return std::regex_replace(CLI::Formatter::make_option_name(option, is_positional), values, "");
}

std::string HelpFormatter::make_option_opts(const CLI::Option *option) const {
  const std::string &text = option->get_option_text();
  if (text.empty() || text.starts_with("[=")) return text;
  return " " + text;
}

}  // namespace nox::app
