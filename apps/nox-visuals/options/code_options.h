// Which codes are said, and who reads them.
#ifndef NOX_VISUALS_OPTIONS_CODE_OPTIONS_H_
#define NOX_VISUALS_OPTIONS_CODE_OPTIONS_H_

#include <optional>
#include <string>

#include "nox-visuals/options/command.h"

namespace nox::app {

struct CodeOptions {
  std::string reader = "all";   // a word of reader_words()
  bool unique = false;          // a code that stays in view is said once
  std::optional<double> pause;  // after so many seconds out of view it is said again; none: never
  bool one = false;             // the first code ends the stream
};

// Adds --reader, --unique and --one.
void add_code_options(Command *command, CodeOptions *options);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_CODE_OPTIONS_H_
