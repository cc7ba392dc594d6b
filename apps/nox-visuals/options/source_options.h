// Which stream is looked at, and under which name.
#ifndef NOX_VISUALS_OPTIONS_SOURCE_OPTIONS_H_
#define NOX_VISUALS_OPTIONS_SOURCE_OPTIONS_H_

#include <cstdint>
#include <optional>
#include <string>

#include "nox-visuals/options/command.h"

namespace nox::app {

struct SourceOptions {
  std::string word;                  // SOURCE as it was given
  std::string name;                  // of the stream; empty: stream_name() makes one
  std::uint64_t frames = 0;          // of a test scene; 0: without end
  std::optional<double> retry = 30;  // the longest wait between two tries, in seconds; none: no try
};

// Adds SOURCE, --name, --frames, --retry and --config.
void add_source_options(Command *command, SourceOptions *options);

// The same without SOURCE, for commands that take several.
void add_stream_options(Command *command, SourceOptions *options);

// `text` with a - for each run of other characters; "" when nothing is left.
std::string as_name(const std::string &text);

// The given name, or one of the host's name and the source's: letters, digits, - and _.
std::string stream_name(const SourceOptions &options);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_SOURCE_OPTIONS_H_
