#include "nox-visuals/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

namespace nox::app {
namespace {

std::mutex mutex;
bool progress_shown = false;

constexpr const char *kClearLine = "\r\033[K";

void clear_progress() {
  if (progress_shown) std::fputs(kClearLine, stderr);
  progress_shown = false;
}

}  // namespace

void say(const std::string &sentence) {
  const std::lock_guard lock(mutex);
  clear_progress();
  std::fprintf(stderr, "nox-visuals: %s\n", sentence.c_str());
  std::fflush(stderr);
}

bool can_show_progress() {
  return isatty(STDERR_FILENO) == 1;
}

void show_progress(const std::string &line) {
  const std::lock_guard lock(mutex);
  clear_progress();
  if (!line.empty()) std::fprintf(stderr, "\r%s", line.c_str());
  progress_shown = !line.empty();
  std::fflush(stderr);
}

ProgressPause::ProgressPause() : lock_(mutex) {
  clear_progress();
  std::fflush(stderr);
}

int progress_columns() {
  constexpr int kUnknown = 80;
  winsize size{};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  // The last column stays free: a terminal may wrap when it is written.
  return (known ? size.ws_col : kUnknown) - 1;
}

}  // namespace nox::app
