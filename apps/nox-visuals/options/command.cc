#include "nox-visuals/options/command.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <vector>

namespace nox::app {

Option Option::value(const std::string &text) {
  option_->option_text(text);
  return *this;
}

Option Option::check(const Check &check) {
  option_->check(CLI::Validator([check](const std::string &word) { return check(word); }, ""));
  return *this;
}

Option Option::positive() {
  option_->check(CLI::PositiveNumber);
  return *this;
}

Option Option::not_negative() {
  option_->check(CLI::NonNegativeNumber);
  return *this;
}

Option Option::one_a_time() {
  option_->allow_extra_args(false);
  return *this;
}

Option Option::required() {
  option_->required();
  return *this;
}

Option Option::needs(const Option &other) {
  option_->needs(other.option_);
  return *this;
}

Option Option::hidden() {
  option_->group("");
  return *this;
}

Command::Command(CLI::App *program, const std::string &name, const std::string &description)
    : app_(program->add_subcommand(name, description)) {}

template <typename T>
Option Command::option(const std::string &name, T *value, const std::string &description) {
  return Option(app_->add_option(name, *value, description));
}
template Option Command::option(const std::string &, std::string *, const std::string &);
template Option Command::option(const std::string &, std::vector<std::string> *,
                                const std::string &);
template Option Command::option(const std::string &, std::uint64_t *, const std::string &);
template Option Command::option(const std::string &, double *, const std::string &);

Option Command::option(const std::string &name, const TakeWord &take,
                       const std::string &description) {
  return Option(app_->add_option_function<std::string>(name, take, description));
}

Option Command::option(const std::string &name, const std::string &description) {
  return Option(app_->add_option(name)->description(description));
}

Option Command::flag(const std::string &name, bool *value, const std::string &description) {
  return Option(app_->add_flag(name, *value, description));
}

Option Command::flag(const std::string &name, std::string *value, const std::string &description) {
  return Option(app_->add_flag(name, *value, description));
}

Option Command::flag(const std::string &name, const TakeWord &take,
                     const std::string &description) {
  return Option(app_->add_flag(name, description)->each(take));
}

void Command::example(const std::string &line) {
  app_->footer("Example: " + line);
}

void Command::when_chosen(const std::function<void()> &act) {
  app_->callback(act);
}

bool read_number(const std::string &word, double *number) {
  return CLI::detail::lexical_cast(word, *number);
}

}  // namespace nox::app
