#include "nox-visuals/outputs/tuio.h"

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "nox-visuals/outputs/osc_packet.h"

namespace nox::app {
namespace {

constexpr const char *kProfile = "/tuio/2Dcur";
constexpr std::int64_t kRepeatNs = 1'000'000'000;

// 0 says "no number" to receivers, and so does every negative one.
std::int32_t after(std::int32_t number) {
  return number == std::numeric_limits<std::int32_t>::max() ? 1 : number + 1;
}

std::int32_t wrapped(std::int64_t number) {
  const auto low = static_cast<std::int32_t>(number & std::numeric_limits<std::int32_t>::max());
  return low == 0 ? 1 : low;
}

}  // namespace

// Receivers drop bundles numbered a little below their newest one, so a restarted program has to go
// on above where it stopped: milliseconds run faster than frames, seconds do not. Presses are
// slower than seconds, which keeps session ids from coming again after a restart too.
Tuio::Tuio(const Address &to, const std::string &stream, std::int64_t started_unix_us, Say say)
    : source_("nox-visuals@" + stream),
      datagrams_("--tuio", to, std::move(say)),
      frame_(wrapped(started_unix_us / 1'000)),
      next_session_(wrapped(started_unix_us / 1'000'000)) {
  send_state();
}

Tuio::~Tuio() {
  finish();
}

void Tuio::take(const Observation &observation) {
  if (const auto *pen = std::get_if<Pen>(&observation)) {
    follow(*pen);
  } else if (std::holds_alternative<Loss>(observation)) {
    if (cursor_) {
      cursor_.reset();
      send_state();
    }
  } else if (std::holds_alternative<End>(observation)) {
    finish();
  }
}

// A datagram may be lost, and a receiver may come late.
void Tuio::tick(std::int64_t now_ns, const Totals & /*totals*/) {
  if (finished_) return;
  if (!repeat_ns_) repeat_ns_ = now_ns + kRepeatNs;
  if (now_ns < *repeat_ns_) return;
  repeat_ns_ = std::max(*repeat_ns_ + kRepeatNs, now_ns);
  send_state();
}

void Tuio::follow(const Pen &pen) {
  if (!pen.pressed) {
    if (!cursor_) return;
    cursor_.reset();
    send_state();
    return;
  }
  const std::int64_t now = stream_ns(pen.when);
  if (!cursor_ || cursor_->stroke != pen.stroke) {
    cursor_ = Cursor{.stroke = pen.stroke, .session = next_session_, .at_ns = now, .at = pen.at};
    next_session_ = after(next_session_);
  } else if (now > cursor_->at_ns) {
    const double seconds = static_cast<double>(now - cursor_->at_ns) * 1e-9;
    const double speed = std::hypot(cursor_->velocity_x, cursor_->velocity_y);
    cursor_->velocity_x = (pen.at.x - cursor_->at.x) / seconds;
    cursor_->velocity_y = (pen.at.y - cursor_->at.y) / seconds;
    cursor_->acceleration =
        (std::hypot(cursor_->velocity_x, cursor_->velocity_y) - speed) / seconds;
    cursor_->at_ns = now;
  }
  cursor_->at = pen.at;
  send_state();
}

void Tuio::finish() {
  if (finished_) return;
  cursor_.reset();
  send_state();
  finished_ = true;
}

void Tuio::send_state() {
  std::vector<OscMessage> bundle{{kProfile, {"source", source_}}, {kProfile, {"alive"}}};
  if (cursor_) {
    bundle.back().arguments.emplace_back(cursor_->session);
    bundle.push_back(
        {kProfile,
         {"set", cursor_->session, static_cast<float>(cursor_->at.x),
          static_cast<float>(cursor_->at.y), static_cast<float>(cursor_->velocity_x),
          static_cast<float>(cursor_->velocity_y), static_cast<float>(cursor_->acceleration)}});
  }
  bundle.push_back({kProfile, {"fseq", frame_}});
  frame_ = after(frame_);
  datagrams_.send(osc_packet(bundle));
}

}  // namespace nox::app
