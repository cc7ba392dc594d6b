#include "nox-visuals/options/source_options.h"

#include <glib.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace nox::app {
namespace {

bool is_name_character(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_';
}

// An empty string when `name` is a name, else what is wrong with it, as CLI11 wants it.
std::string check_name(const std::string &name) {
  const bool right = !name.empty() && std::all_of(name.begin(), name.end(), is_name_character);
  return right ? "" : "a name has letters, digits, - and _ only, not '" + name + "'";
}

// The last part of a path or an address without its ending; all of a scene's or description's name.
std::string short_name(const std::string &source) {
  if (source.starts_with("gst:")) return "gst";
  if (source.starts_with("test:")) return source;
  const std::string stem = std::filesystem::path(source).stem().string();
  return stem.empty() ? source : stem;
}

void set_retry(const std::string &word, std::optional<double> *retry) {
  double seconds = 0;
  if (word == "never") {
    retry->reset();
  } else if (CLI::detail::lexical_cast(word, seconds) && seconds > 0) {
    *retry = seconds;
  } else {
    throw CLI::ValidationError("--retry", "takes seconds above 0, or never; not '" + word + "'");
  }
}

}  // namespace

std::string as_name(const std::string &text) {
  std::string name;
  for (const char c : text) {
    if (is_name_character(c)) {
      name += c;
    } else if (!name.empty() && name.back() != '-') {
      name += '-';
    }
  }
  while (!name.empty() && name.back() == '-') name.pop_back();
  return name;
}

void add_stream_options(CLI::App *command, SourceOptions *options) {
  command->add_option("--name", options->name, "of the stream (default: host and source)")
      ->option_text("S")
      ->check(CLI::Validator(check_name, "", "name"));
  command->add_option("--frames", options->frames, "ends a test scene after so many")
      ->option_text("N")
      ->check(CLI::PositiveNumber);
  command
      ->add_option_function<std::string>(
          "--retry", [options](const std::string &word) { set_retry(word, &options->retry); },
          "longest wait for a source that went (default 30)")
      ->option_text("SECONDS|never");
  command->add_option("--config")
      ->description("options from F: option = value a line")
      ->option_text("F");
}

void add_source_options(CLI::App *command, SourceOptions *options) {
  command->add_option("SOURCE", options->word, "a file, a URI, /dev/videoN, test:pen, gst:...")
      ->required();
  add_stream_options(command, options);
}

std::string stream_name(const SourceOptions &options) {
  if (!options.name.empty()) return options.name;
  return as_name(std::string(g_get_host_name()) + "-" + short_name(options.word));
}

}  // namespace nox::app
