// A command of the program and its options, without the header of the library that reads them,
// which takes the compiler ten seconds.
#ifndef NOX_VISUALS_OPTIONS_COMMAND_H_
#define NOX_VISUALS_OPTIONS_COMMAND_H_

#include <functional>
#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace nox::app {

// What is wrong with a word; empty when nothing is.
using Check = std::function<std::string(const std::string &word)>;
// Takes a word over; throws a UsageError where it is wrong.
using TakeWord = std::function<void(const std::string &word)>;

// One option. It is the command's: copies of this are the same option.
class Option {
 public:
  explicit Option(CLI::Option *option) : option_(option) {}

  Option value(const std::string &text);  // how --help writes its value
  Option check(const Check &check);
  Option positive();
  Option not_negative();
  Option one_a_time();  // each time that it is given, of an option with many values
  Option required();
  Option needs(const Option &other);
  Option hidden();  // in no --help

 private:
  CLI::Option *option_;
};

// A command, as long as the program's own object lives.
class Command {
 public:
  Command(CLI::App *program, const std::string &name, const std::string &description);

  // A name with dashes is an option, one without is an argument. T: std::string, std::vector of it,
  // std::uint64_t, double. What is given goes to `value`, which has to outlive the parsing.
  template <typename T>
  Option option(const std::string &name, T *value, const std::string &description);
  Option option(const std::string &name, const TakeWord &take, const std::string &description);
  // What is given stays with the library, where apply_config_file() looks.
  Option option(const std::string &name, const std::string &description);

  // Takes a value only behind =. "--name,!--no-name" can be denied; "--name{word}" stands for a
  // word when it has none of its own.
  Option flag(const std::string &name, bool *value, const std::string &description);
  Option flag(const std::string &name, std::string *value, const std::string &description);
  Option flag(const std::string &name, const TakeWord &take, const std::string &description);

  void example(const std::string &line);               // below its --help
  void when_chosen(const std::function<void()> &act);  // once all options are read

 private:
  CLI::App *app_;
};

// Whether all of `word` is a number, which goes to `number`.
bool read_number(const std::string &word, double *number);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_COMMAND_H_
