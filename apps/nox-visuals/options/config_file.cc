#include "nox-visuals/options/config_file.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

constexpr const char *kConfig = "--config";

struct Setting {
  std::string option;
  std::string value;
};

std::string trimmed(const std::string &text) {
  constexpr const char *kBlank = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

Setting parse_line(const std::string &line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) throw UsageError("expected option = value");
  return {trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1))};
}

void apply_setting(const Setting &setting, const std::set<const CLI::Option *> &given,
                   CLI::App *command) {
  CLI::Option *option = command->get_option_no_throw("--" + setting.option);
  if (option == nullptr || option->get_lnames().empty() || setting.option == "help" ||
      "--" + setting.option == kConfig) {
    throw UsageError("no option '" + setting.option + "'");
  }
  if (given.contains(option)) return;
  const bool flag = option->get_expected_min() == 0;
  option->add_result(flag ? option->get_flag_value(setting.option, setting.value) : setting.value);
  option->run_callback();
}

void apply_line(const std::string &line, const std::set<const CLI::Option *> &given,
                CLI::App *command) {
  if (line.empty() || line.front() == '#') return;
  try {
    apply_setting(parse_line(line), given, command);
  } catch (const CLI::Error &error) {
    throw UsageError(error.what());
  }
}

}  // namespace

void apply_config_file(CLI::App *command) {
  const CLI::Option *config = command->get_option_no_throw(kConfig);
  if (config == nullptr || config->count() == 0) return;
  const auto path = config->as<std::string>();
  std::ifstream file(path);
  if (!file) throw UsageError(path + ": " + std::strerror(errno));
  std::set<const CLI::Option *> given;
  for (const CLI::Option *option : command->get_options()) {
    if (option->count() > 0) given.insert(option);
  }
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    try {
      apply_line(trimmed(line), given, command);
    } catch (const UsageError &error) {
      throw UsageError(path + ":" + std::to_string(number) + ": " + error.what());
    }
  }
}

}  // namespace nox::app
