// SIGINT and SIGTERM: they end the stream, so that outputs and files are finished first.
#ifndef NOX_VISUALS_STREAM_SIGNALS_H_
#define NOX_VISUALS_STREAM_SIGNALS_H_

#include <functional>

namespace nox::app {

// While one lives, the first SIGINT or SIGTERM calls `stop` from the default main context; a second
// SIGINT ends the program at once.
class SignalWatch {
 public:
  explicit SignalWatch(std::function<void()> stop);
  ~SignalWatch();
  SignalWatch(const SignalWatch &) = delete;
  SignalWatch &operator=(const SignalWatch &) = delete;

 private:
  std::function<void()> stop_;
  unsigned interrupt_;  // ids of event sources
  unsigned terminate_;
};

// Whether one of the two came.
bool stopped_by_signal();

// After a SIGINT, ends the program as the signal would have, which is how a shell that runs it in a
// loop learns to stop too.
void end_by_signal_if_interrupted();

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_SIGNALS_H_
