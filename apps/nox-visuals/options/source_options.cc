#include "nox-visuals/options/source_options.h"

#include <glib.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

bool is_name_character(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_';
}

// An empty string when `name` is a name, else what is wrong with it.
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
  } else if (read_number(word, &seconds) && seconds > 0) {
    *retry = seconds;
  } else {
    throw UsageError("--retry: takes seconds above 0, or never; not '" + word + "'");
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

void add_stream_options(Command *command, SourceOptions *options) {
  command->option("--name", &options->name, "of the stream (default: host and source)")
      .value("S")
      .check(check_name);
  command->option("--frames", &options->frames, "ends a test scene after so many")
      .value("N")
      .positive();
  const TakeWord take = [options](const std::string &word) { set_retry(word, &options->retry); };
  command->option("--retry", take, "longest wait for a source that went (default 30)")
      .value("SECONDS|never");
  command->option("--config", "options from F: option = value a line").value("F");
}

void add_source_options(Command *command, SourceOptions *options) {
  command->option("SOURCE", &options->word, "a file, a URI, /dev/videoN, test:pen, gst:...")
      .required();
  add_stream_options(command, options);
}

std::string stream_name(const SourceOptions &options) {
  if (!options.name.empty()) return options.name;
  return as_name(std::string(g_get_host_name()) + "-" + short_name(options.word));
}

}  // namespace nox::app
