// Standard error: sentences for people, and a line of progress below them where it is a terminal.
#ifndef NOX_VISUALS_CONSOLE_H_
#define NOX_VISUALS_CONSOLE_H_

#include <mutex>
#include <string>

namespace nox::app {

// Writes "nox-visuals: SENTENCE". From any thread.
void say(const std::string &sentence);

// Whether standard error is a terminal: elsewhere there is no progress.
bool can_show_progress();

// Replaces the line of progress by `line`; sentences go above it. An empty line removes it.
void show_progress(const std::string &line);

// While one lives, there is no line of progress: what goes to the same terminal starts at its left.
// Nothing may be said meanwhile.
class ProgressPause {
 public:
  ProgressPause();

 private:
  std::lock_guard<std::mutex> lock_;
};

// How many columns a line of progress may have.
int progress_columns();

}  // namespace nox::app

#endif  // NOX_VISUALS_CONSOLE_H_
