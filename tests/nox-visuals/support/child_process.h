// Another program, for as long as this object lives.
#ifndef NOX_VISUALS_TESTS_CHILD_PROCESS_H_
#define NOX_VISUALS_TESTS_CHILD_PROCESS_H_

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace nox::app::test {

class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string> &command);
  ~ChildProcess();
  ChildProcess(const ChildProcess &) = delete;
  ChildProcess &operator=(const ChildProcess &) = delete;

  // Waits until what it printed so far, on standard output or error, holds `text`; false when it
  // does not come in time.
  bool wait_for(const std::string &text,
                std::chrono::milliseconds patience = std::chrono::milliseconds(10'000));

  const std::string &output() const { return output_; }

  // Waits until it has ended by itself and returns its exit status; a signal's number is negative.
  int wait();

  // Asks it to end, by its id, makes it if it does not within three seconds, and waits until it has.
  // Returns as wait() does; 0 if it has ended before.
  int stop();

 private:
  bool ends_within(std::chrono::milliseconds patience);
  bool read_some(std::chrono::milliseconds patience);

  pid_t id_ = -1;
  int pipe_ = -1;
  std::string output_;
};

}  // namespace nox::app::test

#endif  // NOX_VISUALS_TESTS_CHILD_PROCESS_H_
