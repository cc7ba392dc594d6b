// OSC messages as bytes.
#ifndef NOX_VISUALS_OUTPUTS_OSC_PACKET_H_
#define NOX_VISUALS_OUTPUTS_OSC_PACKET_H_

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace nox::app {

using OscArgument = std::variant<std::int32_t, float, std::string>;

struct OscMessage {
  std::string path;
  std::vector<OscArgument> arguments;
};

std::string osc_packet(const OscMessage &message);

// A bundle with the time tag "immediately".
std::string osc_packet(const std::vector<OscMessage> &bundle);

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_OSC_PACKET_H_
