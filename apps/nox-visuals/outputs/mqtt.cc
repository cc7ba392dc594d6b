#include "nox-visuals/outputs/mqtt.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "nox-visuals/outputs/output_error.h"

namespace nox::app {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kFirstAnswer{2'000};
constexpr milliseconds kDrain{2'000};
constexpr milliseconds kGoodbye{1'000};
constexpr std::size_t kMostWaiting = 1'000;
// The library keeps what is handed over without a limit.
constexpr std::size_t kMostUnderWay = 100;
constexpr std::int64_t kStatsNs = 5'000'000'000;

MqttMessage status(const std::string &prefix, const char *text) {
  return {prefix + "status", text, 1, true};
}

// What the constructor of the connection says, with the name of the output.
MqttConnection connect(const std::string &name, const MqttOptions &options,
                       const std::string &prefix) try {
  return MqttConnection(options.broker, status(prefix, "offline"));
} catch (const OutputError &error) {
  throw OutputError(name + ": " + error.what());
}

}  // namespace

Mqtt::Mqtt(const MqttOptions &options, const std::string &stream, Say say)
    : stream_(stream),
      prefix_(options.prefix + "/" + stream + "/"),
      unix_offset_us_(options.unix_offset_us),
      say_(std::move(say)),
      name_("--mqtt " + to_string(options.broker.address)),
      connection_(connect(name_, options, prefix_)) {
  wait_for_first_answer();
}

// The broker forgets the will of those who say goodbye. What it acknowledges too late would make
// the system cut the connection, and what it had not read by then would be lost.
Mqtt::~Mqtt() {
  if (state_ != State::kOnline) return;
  hand_over(status(prefix_, "offline"));
  settle(kGoodbye);
}

// A broker that is not there may come; one that refuses will go on refusing.
void Mqtt::wait_for_first_answer() {
  const auto until = steady_clock::now() + kFirstAnswer;
  while (state_ == State::kUnknown && steady_clock::now() < until) {
    for (const MqttEvent &event : connection_.events(milliseconds(50))) {
      if (event.kind == MqttEvent::kRefused) throw OutputError(name_ + ": " + event.reason);
      handle(event);
    }
  }
  if (state_ == State::kUnknown) lose_connection({MqttEvent::kGone, 0, "no answer yet"});
}

void Mqtt::take(const Observation &observation) {
  poll(milliseconds(0));
  read_clocks(observation);
  if (const auto *pen = std::get_if<Pen>(&observation)) {
    send_now("pen", to_json(observation, stream_));
    publish_press(observation, pen->pressed);
  } else if (std::holds_alternative<Loss>(observation)) {
    send_now("pen", to_json(observation, stream_));
    publish_press(observation, false);
  } else if (std::holds_alternative<Code>(observation)) {
    send_surely("code", to_json(observation, stream_));
  } else {
    send_surely("stats", to_json(observation, stream_), true);
  }
}

void Mqtt::read_clocks(const Observation &observation) {
  const Moment &when =
      std::visit([](const auto &it) -> const Moment & { return it.when; }, observation);
  if (when.unix_us) unix_offset_us_ = *when.unix_us - when.entered_ns / 1'000;
}

void Mqtt::publish_press(const Observation &observation, bool pressed) {
  if (std::exchange(pressed_, pressed) != pressed) {
    send_surely("press", to_json(observation, stream_));
  }
}

// The counts wait until nothing else does: the newest ones say all, and must push no press out.
void Mqtt::tick(std::int64_t now_ns, const Totals &totals) {
  poll(milliseconds(0));
  if (!next_stats_ns_) next_stats_ns_ = now_ns + kStatsNs;
  if (now_ns < *next_stats_ns_ || state_ != State::kOnline || !waiting_.empty()) return;
  next_stats_ns_ = now_ns + kStatsNs;
  End so_far{{}, totals};
  if (unix_offset_us_) so_far.when.unix_us = now_ns / 1'000 + *unix_offset_us_;
  send_surely("stats", to_json(so_far, stream_), true);
}

void Mqtt::drain() {
  settle(kDrain);
  undelivered_ += waiting_.size() + under_way_.size();
  waiting_.clear();
  under_way_.clear();
}

// Waits until all is delivered.
void Mqtt::settle(milliseconds patience) {
  const auto until = steady_clock::now() + patience;
  while (!waiting_.empty() || !under_way_.empty()) {
    const auto left = std::chrono::duration_cast<milliseconds>(until - steady_clock::now());
    if (left.count() <= 0) return;
    poll(left);
  }
}

void Mqtt::poll(milliseconds patience) {
  for (const MqttEvent &event : connection_.events(patience)) handle(event);
  hand_over();
}

void Mqtt::handle(const MqttEvent &event) {
  switch (event.kind) {
    case MqttEvent::kConnected:
      if (state_ == State::kOffline) say_(name_ + ": connected");
      state_ = State::kOnline;
      next_stats_ns_ = 0;
      hand_over(status(prefix_, "online"));
      break;
    case MqttEvent::kDelivered:
      under_way_.erase(event.message);
      break;
    case MqttEvent::kGone:
    case MqttEvent::kRefused:
      lose_connection(event);
      break;
  }
}

// What of QoS 0 was not yet written went with the connection.
void Mqtt::lose_connection(const MqttEvent &event) {
  undelivered_ += std::erase_if(under_way_, [](const auto &entry) { return entry.second == 0; });
  if (state_ != State::kOffline) {
    say_(name_ + ": " + (state_ == State::kOnline ? "the connection is lost: " : "") +
         event.reason + "; trying again");
  }
  state_ = State::kOffline;
}

void Mqtt::send_now(const std::string &topic, const std::string &payload) {
  if (state_ != State::kOnline || !hand_over({prefix_ + topic, payload, 0, false})) ++undelivered_;
}

void Mqtt::send_surely(const std::string &topic, const std::string &payload, bool retain) {
  waiting_.push_back({prefix_ + topic, payload, 1, retain});
  hand_over();
  if (waiting_.size() + under_way_.size() <= kMostWaiting || waiting_.empty()) return;
  waiting_.pop_front();
  ++undelivered_;
}

void Mqtt::hand_over() {
  while (state_ == State::kOnline && !waiting_.empty() && hand_over(waiting_.front())) {
    waiting_.pop_front();
  }
}

bool Mqtt::hand_over(const MqttMessage &message) {
  if (under_way_.size() >= kMostUnderWay) return false;
  const std::optional<int> number = connection_.publish(message);
  if (number) under_way_[*number] = message.qos;
  return number.has_value();
}

}  // namespace nox::app
