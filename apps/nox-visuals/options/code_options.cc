#include "nox-visuals/options/code_options.h"

#include <vector>

#include "nox-visuals/errors.h"
#include "nox-visuals/readers/readers.h"

namespace nox::app {
namespace {

constexpr const char *kGiven = "true";  // what a flag without a value stands for

void set_unique(const std::string &word, CodeOptions *options) {
  double seconds = 0;
  options->unique = true;
  if (word == kGiven) return;
  if (!read_number(word, &seconds) || !(seconds > 0)) {
    throw UsageError("--unique: takes seconds above 0, not '" + word + "'");
  }
  options->pause = seconds;
}

std::string joined(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) text += (text.empty() ? "" : "|") + word;
  return text;
}

std::string check_reader(const std::string &word) {
  if (word == "zxing" && !built_with_zxing()) return "this program was built without ZXing";
  const std::vector<std::string> words = reader_words();
  for (const std::string &known : words) {
    if (word == known) return "";
  }
  return "there is no reader '" + word + "'; there are " + joined(words);
}

}  // namespace

void add_code_options(Command *command, CodeOptions *options) {
  command->option("--reader", &options->reader, "who reads the codes (default all)")
      .value(joined(reader_words()))
      .check(check_reader);
  // A flag takes a value only behind =, so that a SOURCE may follow it.
  const std::string description = "says a code once, or again after SECONDS out of view";
  const TakeWord take = [options](const std::string &word) { set_unique(word, options); };
  command->flag("--unique", take, description).value("[=SECONDS]");
  command->flag("--one", &options->one, "ends after the first code");
}

}  // namespace nox::app
