// Sockets on the loopback address, on ports that nobody else uses.
#ifndef NOX_VISUALS_TESTS_SOCKETS_H_
#define NOX_VISUALS_TESTS_SOCKETS_H_

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>

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

// Passes connections, one after the other, on to a server whose answers it holds back for a while.
class LateRelay {
 public:
  LateRelay(std::uint16_t server, std::chrono::milliseconds delay);
  ~LateRelay();
  LateRelay(const LateRelay &) = delete;
  LateRelay &operator=(const LateRelay &) = delete;

  std::uint16_t port() const { return port_; }

 private:
  void run();
  void pass_on(int client) const;

  std::uint16_t server_;
  std::chrono::milliseconds delay_;
  std::uint16_t port_ = 0;
  int listener_;
  std::thread thread_;
};

// What a server answers to `request`, until it closes the connection.
std::string ask(std::uint16_t port, const std::string &request);

}  // namespace nox::app::test

#endif  // NOX_VISUALS_TESTS_SOCKETS_H_
