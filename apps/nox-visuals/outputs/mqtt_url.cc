#include "nox-visuals/outputs/mqtt_url.h"

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

constexpr std::uint16_t kPort = 1883;
constexpr std::uint16_t kTlsPort = 8883;

// Wildcards are for those who subscribe; an empty level is nearly always a slip of the pen.
void check_prefix(const std::string &text, const std::string &prefix) {
  if (prefix.find_first_of("+# ") != std::string::npos || prefix.front() == '/' ||
      prefix.front() == '$' || prefix.back() == '/' || prefix.find("//") != std::string::npos) {
    throw UsageError("'" + text +
                     "': a prefix of topics has no +, # or space, does not start with / "
                     "or $, and has a name between any two /");
  }
}

}  // namespace

MqttUrl parse_mqtt_url(const std::string &text) {
  const std::size_t scheme = text.find("://");
  MqttUrl url;
  url.tls = text.starts_with("mqtts://");
  if (!url.tls && !text.starts_with("mqtt://")) {
    throw UsageError("'" + text + "' is not mqtt[s]://HOST[:PORT][/PREFIX]");
  }
  const std::size_t host = scheme + 3;
  const std::size_t slash = text.find('/', host);
  const std::string place = text.substr(host, slash - host);
  if (place.find('@') != std::string::npos) {
    throw UsageError(
        "a user and a password in the URL could be read by everyone in the list of processes; "
        "use --mqtt-user and --mqtt-password-file");
  }
  url.broker = parse_address(place, url.tls ? kTlsPort : kPort);
  if (slash != std::string::npos && slash + 1 < text.size()) {
    url.prefix = text.substr(slash + 1);
    check_prefix(text, url.prefix);
  }
  return url;
}

}  // namespace nox::app
