#include "nox-visuals/support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>

extern char **environ;

namespace nox::app::test {

ChildProcess::ChildProcess(const std::vector<std::string> &command) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  std::vector<char *> arguments;
  for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  const int failed =
      posix_spawnp(&id_, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  pipe_ = ends[0];
  if (failed != 0) {
    close(pipe_);
    throw std::runtime_error("cannot start " + command.front());
  }
}

ChildProcess::~ChildProcess() {
  stop();
  close(pipe_);
}

bool ChildProcess::wait_for(const std::string &text, std::chrono::milliseconds patience) {
  const auto until = std::chrono::steady_clock::now() + patience;
  while (output_.find(text) == std::string::npos) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        until - std::chrono::steady_clock::now());
    if (left.count() <= 0 || !read_some(left)) return false;
  }
  return true;
}

// False when nothing came, or nothing will.
bool ChildProcess::read_some(std::chrono::milliseconds patience) {
  pollfd ready{pipe_, POLLIN, 0};
  if (poll(&ready, 1, static_cast<int>(patience.count())) != 1) return false;
  char bytes[4096];
  const ssize_t size = read(pipe_, bytes, sizeof bytes);
  if (size <= 0) return false;
  output_.append(bytes, static_cast<std::size_t>(size));
  return true;
}

int ChildProcess::wait() {
  int status = 0;
  // What it still has to say must not hold it up.
  while (waitpid(id_, &status, WNOHANG) == 0) read_some(std::chrono::milliseconds(20));
  while (read_some(std::chrono::milliseconds(0))) continue;
  id_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool ChildProcess::ends_within(std::chrono::milliseconds patience) {
  const auto until = std::chrono::steady_clock::now() + patience;
  siginfo_t ended{};
  while (waitid(P_PID, static_cast<id_t>(id_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         ended.si_pid == 0 && std::chrono::steady_clock::now() < until) {
    read_some(std::chrono::milliseconds(20));
  }
  return ended.si_pid != 0;
}

// mosquitto_sub locks in its handler of the signal what it may hold already, and hangs then.
int ChildProcess::stop() {
  if (id_ < 0) return 0;
  kill(id_, SIGTERM);
  if (!ends_within(std::chrono::seconds(3))) kill(id_, SIGKILL);
  return wait();
}

}  // namespace nox::app::test
