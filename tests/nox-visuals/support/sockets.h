// Sockets on the loopback address, on ports that nobody else uses.
#ifndef NOX_VISUALS_TESTS_SOCKETS_H_
#define NOX_VISUALS_TESTS_SOCKETS_H_

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "nox-visuals/outputs/address.h"

namespace nox::app::test {

// Receives datagrams.
class UdpReceiver {
 public:
  UdpReceiver();
  ~UdpReceiver();
  UdpReceiver(const UdpReceiver &) = delete;
  UdpReceiver &operator=(const UdpReceiver &) = delete;

  Address address() const { return {"127.0.0.1", port_}; }

  // The next datagram, or nothing when none comes in time.
  std::optional<std::string> receive(
      std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

 private:
  int socket_;
  std::uint16_t port_;
};

// A port that was free a moment ago.
std::uint16_t free_udp_port();
std::uint16_t free_tcp_port();

// What a server answers to `request`, until it closes the connection.
std::string ask(std::uint16_t port, const std::string &request);

}  // namespace nox::app::test

#endif  // NOX_VISUALS_TESTS_SOCKETS_H_
