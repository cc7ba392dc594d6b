#include "nox-visuals/outputs/address.h"

#include <charconv>
#include <string_view>

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

[[noreturn]] void refuse(const std::string &text, const char *why) {
  throw UsageError("'" + text + "' is not HOST:PORT: " + why);
}

std::uint16_t parse_port(const std::string &text, std::string_view digits) {
  int port = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), port);
  if (error != std::errc() || end != digits.end() || port < 1 || port > 65535) {
    refuse(text, "the port is a number from 1 to 65535");
  }
  return static_cast<std::uint16_t>(port);
}

// The place of the colon before the port, or npos.
std::size_t find_port(const std::string &text) {
  if (text.starts_with('[')) {
    const std::size_t bracket = text.find(']');
    if (bracket == std::string::npos) refuse(text, "the bracket is not closed");
    if (bracket + 1 == text.size()) return std::string::npos;
    if (text[bracket + 1] != ':') refuse(text, "a colon follows the bracket");
    return bracket + 1;
  }
  const std::size_t colon = text.find(':');
  if (colon != text.rfind(':'))
    refuse(text, "an IPv6 address stands in brackets, as in [::1]:3333");
  return colon;
}

}  // namespace

Address parse_address(const std::string &text, std::optional<std::uint16_t> default_port) {
  const std::size_t colon = find_port(text);
  std::string host = text.substr(0, colon);
  if (host.starts_with('[')) host = host.substr(1, host.size() - 2);
  if (host.empty()) refuse(text, "the host is missing");
  if (host.find_first_of(" /@") != std::string::npos) refuse(text, "a host has no space, / or @");
  if (colon != std::string::npos) {
    return {host, parse_port(text, std::string_view(text).substr(colon + 1))};
  }
  if (!default_port) refuse(text, "the port is missing");
  return {host, *default_port};
}

std::string to_string(const Address &address) {
  const bool six = address.host.find(':') != std::string::npos;
  return (six ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

}  // namespace nox::app
