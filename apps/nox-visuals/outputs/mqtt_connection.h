// A connection to an MQTT broker that comes back by itself.
#ifndef NOX_VISUALS_OUTPUTS_MQTT_CONNECTION_H_
#define NOX_VISUALS_OUTPUTS_MQTT_CONNECTION_H_

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "nox-visuals/outputs/address.h"

namespace nox::app {

struct MqttBroker {
  Address address;
  bool tls = false;
  std::string ca_file;    // who vouches for the broker; empty: the system's authorities
  std::string cert_file;  // who we are, with key_file; both or none
  std::string key_file;
  std::string user;  // empty: nobody
  std::string password;
};

struct MqttMessage {
  std::string topic;
  std::string payload;
  int qos = 0;
  bool retain = false;
};

struct MqttEvent {
  enum Kind {
    kConnected,
    kGone,       // or an attempt failed: `reason`
    kRefused,    // the broker, or its certificate, will not have us: `reason`
    kDelivered,  // `message`: written (QoS 0) or acknowledged (QoS 1)
  };
  Kind kind;
  int message = 0;
  std::string reason;
};

// All functions are called from one thread; a thread of the connection's own talks to the broker,
// and tries again with growing pauses while there is none.
class MqttConnection {
 public:
  // The broker publishes `will` when the connection breaks. Throws OutputError when the name does
  // not resolve or the files of TLS cannot be used.
  MqttConnection(const MqttBroker &broker, const MqttMessage &will);

  // Says goodbye to the broker after what was published has gone out; waits a second at most.
  ~MqttConnection();

  MqttConnection(const MqttConnection &) = delete;
  MqttConnection &operator=(const MqttConnection &) = delete;

  // What has happened since the last call; waits up to `patience` for the first event.
  std::vector<MqttEvent> events(std::chrono::milliseconds patience);

  // Hands a message over and returns the number that kDelivered will name; nothing when it is not
  // taken. One of QoS 1 that was taken is sent again after a reconnection until it is acknowledged;
  // one of QoS 0 is lost with the connection.
  std::optional<int> publish(const MqttMessage &message);

 private:
  struct Shared;

  std::shared_ptr<Shared> shared_;
  std::thread thread_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_MQTT_CONNECTION_H_
