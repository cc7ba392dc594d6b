#include "nox-visuals/outputs/json_lines.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "nox-visuals/console.h"

namespace nox::app {

JsonLines::JsonLines(int descriptor, std::string name, std::string stream)
    : descriptor_(descriptor), name_(std::move(name)), stream_(std::move(stream)) {}

bool JsonLines::write_all(const std::string &line) {
  std::string_view left = line;
  while (!left.empty()) {
    const ssize_t written = write(descriptor_, left.data(), left.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    left.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void JsonLines::take(const Observation &observation) {
  if (!broken_ && write_all(to_json(observation, stream_) + "\n")) return;
  if (!broken_) say(name_ + ": " + std::strerror(errno) + "; no more lines are written");
  broken_ = true;
  ++undelivered_;
}

}  // namespace nox::app
