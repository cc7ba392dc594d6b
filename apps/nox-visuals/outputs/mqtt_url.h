// mqtt[s]://HOST[:PORT][/PREFIX] as people write it.
#ifndef NOX_VISUALS_OUTPUTS_MQTT_URL_H_
#define NOX_VISUALS_OUTPUTS_MQTT_URL_H_

#include <string>

#include "nox-visuals/outputs/address.h"

namespace nox::app {

struct MqttUrl {
  Address broker;  // port 1883, or 8883 over TLS, unless it says another
  bool tls = false;
  std::string prefix = "nox";  // of all topics
};

// Throws UsageError with a sentence that names the text, without what could be a
// password in it.
MqttUrl parse_mqtt_url(const std::string &text);

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_MQTT_URL_H_
