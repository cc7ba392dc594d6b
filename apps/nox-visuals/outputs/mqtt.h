// Observations as MQTT 3.1.1 messages.
#ifndef NOX_VISUALS_OUTPUTS_MQTT_H_
#define NOX_VISUALS_OUTPUTS_MQTT_H_

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>

#include "nox-visuals/outputs/mqtt_connection.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app {

struct MqttOptions {
  MqttBroker broker;
  std::string prefix = "nox";
  // The wall clock minus that of tick(), until the first observation tells; none for files.
  std::optional<std::int64_t> unix_offset_us;
};

// Under PREFIX/S, each message the JSON line of its observation:
//   status  online or offline, retained, QoS 1; the broker says offline when the program dies
//   pen     every pen and loss, QoS 0
//   press   the pen as it is pressed and released, and a loss while pressed, QoS 1
//   code    QoS 1
//   stats   the counts so far, as the line of the end, retained, every 5 s and at the end, QoS 1
//
// While there is no broker, QoS 0 is counted as undelivered at once, QoS 1 waits: 1,000 messages at
// most, the oldest ones go first and are counted.
class Mqtt : public Output {
 public:
  // Waits two seconds at most for the broker's first answer. Throws OutputError when the name does
  // not resolve, TLS cannot work, or the broker refuses the user.
  Mqtt(const MqttOptions &options, const std::string &stream, Say say);
  ~Mqtt() override;

  void take(const Observation &observation) override;
  void tick(std::int64_t now_ns, const Totals &totals) override;
  void drain() override;
  std::uint64_t undelivered() const override { return undelivered_; }

 private:
  enum class State { kUnknown, kOnline, kOffline };

  void wait_for_first_answer();
  void handle(const MqttEvent &event);
  void settle(std::chrono::milliseconds patience);
  void poll(std::chrono::milliseconds patience);
  void lose_connection(const MqttEvent &event);
  void read_clocks(const Observation &observation);
  void publish_press(const Observation &observation, bool pressed);
  void send_now(const std::string &topic, const std::string &payload);
  void send_surely(const std::string &topic, const std::string &payload, bool retain = false);
  void hand_over();
  bool hand_over(const MqttMessage &message);

  std::string stream_;
  std::string prefix_;
  // The wall clock minus that of tick(), from the last observation that told both; none for files.
  std::optional<std::int64_t> unix_offset_us_;
  Say say_;
  std::string name_;
  MqttConnection connection_;
  State state_ = State::kUnknown;
  std::deque<MqttMessage> waiting_;         // QoS 1, oldest first
  std::unordered_map<int, int> under_way_;  // handed over: number to QoS
  std::optional<std::int64_t> next_stats_ns_;
  bool pressed_ = false;
  std::uint64_t undelivered_ = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_MQTT_H_
