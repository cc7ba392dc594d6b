// HOST:PORT as people write it.
#ifndef NOX_VISUALS_OUTPUTS_ADDRESS_H_
#define NOX_VISUALS_OUTPUTS_ADDRESS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace nox::app {

struct Address {
  std::string host;  // a name, or a number without brackets
  std::uint16_t port = 0;
};

// Reads HOST:PORT, or HOST alone where there is a default port; an IPv6 number stands in brackets.
// Throws UsageError with a sentence that names the text.
Address parse_address(const std::string &text, std::optional<std::uint16_t> default_port);

// As it was written, with brackets around an IPv6 number.
std::string to_string(const Address &address);

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_ADDRESS_H_
