#include "nox-visuals/steps/unique_codes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nox::app {

UniqueCodes::UniqueCodes(std::optional<double> seconds) {
  if (seconds) pause_ns_ = std::llround(*seconds * 1e9);
}

void UniqueCodes::take(const Observation &in, std::vector<Observation> *out) {
  const auto *code = std::get_if<Code>(&in);
  if (code == nullptr || is_new(*code)) out->push_back(in);
}

bool UniqueCodes::is_new(const Code &code) {
  const std::int64_t now = stream_ns(code.when);
  const auto known = by_bytes_.find(code.bytes);
  if (known == by_bytes_.end()) {
    seen_.push_front({code.bytes, now});
    by_bytes_.emplace(seen_.front().bytes, seen_.begin());
    forget_oldest(now);
    return true;
  }
  const auto entry = known->second;
  seen_.splice(seen_.begin(), seen_, entry);
  // A slow reader tells of a frame that is older than the newest one.
  const std::int64_t before = std::exchange(entry->last_ns, std::max(entry->last_ns, now));
  return pause_ns_ && now - before >= *pause_ns_;
}

void UniqueCodes::forget_oldest(std::int64_t now_ns) {
  const auto is_over = [&] {
    return seen_.size() > kRememberedCodes ||
           (pause_ns_ && now_ns - seen_.back().last_ns >= *pause_ns_);
  };
  while (!seen_.empty() && is_over()) {
    by_bytes_.erase(seen_.back().bytes);
    seen_.pop_back();
  }
}

}  // namespace nox::app
