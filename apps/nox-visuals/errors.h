// What ends the program early. Each kind has its exit status; the sentence says what is wrong and,
// where it is known, what can be done.
#ifndef NOX_VISUALS_ERRORS_H_
#define NOX_VISUALS_ERRORS_H_

#include <stdexcept>

namespace nox::app {

enum ExitStatus : int {
  kDone = 0,
  kStreamFailed = 1,
  kUsage = 2,
  kOutputFailed = 3,  // OutputError, or an output that broke on the way
};

// The stream cannot be opened, or failed.
struct StreamError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The command line or the file of options is wrong.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_ERRORS_H_
