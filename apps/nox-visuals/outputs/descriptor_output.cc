#include "nox-visuals/outputs/descriptor_output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "nox-visuals/console.h"

namespace nox::app {

DescriptorOutput::DescriptorOutput(int descriptor, std::string name)
    : descriptor_(descriptor), name_(std::move(name)), is_terminal_(isatty(descriptor) == 1) {}

bool DescriptorOutput::write_all(const std::string &text) {
  std::optional<ProgressPause> pause;
  if (is_terminal_) pause.emplace();
  std::string_view left = text;
  while (!left.empty()) {
    const ssize_t written = write(descriptor_, left.data(), left.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    left.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void DescriptorOutput::take(const Observation &observation) {
  const std::string text = text_of(observation);
  if (text.empty()) return;
  if (!broken_ && write_all(text)) return;
  if (!broken_) say(name_ + ": " + std::strerror(errno) + "; no more lines are written");
  broken_ = true;
  ++undelivered_;
}

}  // namespace nox::app
