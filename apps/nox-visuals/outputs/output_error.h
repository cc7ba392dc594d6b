// An output cannot be opened: the sentence says which and why, and what can be done.
#ifndef NOX_VISUALS_OUTPUTS_OUTPUT_ERROR_H_
#define NOX_VISUALS_OUTPUTS_OUTPUT_ERROR_H_

#include <stdexcept>

namespace nox::app {

struct OutputError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_OUTPUT_ERROR_H_
