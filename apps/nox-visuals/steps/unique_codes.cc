#include "nox-visuals/steps/unique_codes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace nox::app {
namespace {

constexpr std::size_t kForgetAtLeast = 1000;

}  // namespace

UniqueCodes::UniqueCodes(std::optional<double> seconds) : forget_at_(kForgetAtLeast) {
  if (seconds) pause_ns_ = std::llround(*seconds * 1e9);
}

void UniqueCodes::take(const Observation &in, std::vector<Observation> *out) {
  const auto *code = std::get_if<Code>(&in);
  if (code == nullptr || is_new(*code)) out->push_back(in);
}

bool UniqueCodes::is_new(const Code &code) {
  const std::int64_t now = stream_ns(code.when);
  forget_old(now);
  const auto [entry, is_first] = seen_ns_.try_emplace(code.bytes, now);
  // A slow reader tells of a frame that is older than the newest one.
  const std::int64_t before = std::exchange(entry->second, std::max(entry->second, now));
  return is_first || (pause_ns_ && now - before >= *pause_ns_);
}

// Memory follows the codes of a pause, not those of a day.
void UniqueCodes::forget_old(std::int64_t now_ns) {
  if (!pause_ns_ || seen_ns_.size() < forget_at_) return;
  std::erase_if(seen_ns_, [&](const auto &entry) { return now_ns - entry.second >= *pause_ns_; });
  forget_at_ = std::max(kForgetAtLeast, 2 * seen_ns_.size());
}

}  // namespace nox::app
