#include "nox-visuals/support/sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace nox::app::test {
namespace {

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int bound_socket(int type, std::uint16_t *port) {
  const int fd = socket(AF_INET, type | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(0);
  socklen_t length = sizeof address;
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
    throw std::runtime_error("no socket on the loopback address");
  }
  *port = ntohs(address.sin_port);
  return fd;
}

// A negative number when nobody is there.
int connected_socket(std::uint16_t port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  if (connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) return fd;
  close(fd);
  return -1;
}

std::uint16_t free_port(int type) {
  std::uint16_t port = 0;
  close(bound_socket(type, &port));
  return port;
}

}  // namespace

UdpReceiver::UdpReceiver() : socket_(-1), port_(0) {
  socket_ = bound_socket(SOCK_DGRAM, &port_);
}

UdpReceiver::~UdpReceiver() {
  close(socket_);
}

std::optional<std::string> UdpReceiver::receive(std::chrono::milliseconds patience) {
  pollfd ready{socket_, POLLIN, 0};
  if (poll(&ready, 1, static_cast<int>(patience.count())) != 1) return std::nullopt;
  std::string bytes(65536, '\0');
  const ssize_t size = recv(socket_, bytes.data(), bytes.size(), 0);
  if (size < 0) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

std::uint16_t free_udp_port() {
  return free_port(SOCK_DGRAM);
}

std::uint16_t free_tcp_port() {
  return free_port(SOCK_STREAM);
}

LateRelay::LateRelay(std::uint16_t server, std::chrono::milliseconds delay)
    : server_(server), delay_(delay), listener_(bound_socket(SOCK_STREAM, &port_)) {
  listen(listener_, 8);
  thread_ = std::thread([this] { run(); });
}

LateRelay::~LateRelay() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

void LateRelay::run() {
  for (int client = -1; (client = accept(listener_, nullptr, nullptr)) >= 0;) {
    pass_on(client);
    close(client);
  }
}

void LateRelay::pass_on(int client) const {
  const int server = connected_socket(server_);
  pollfd ends[] = {{client, POLLIN, 0}, {server, POLLIN, 0}};
  char bytes[4096];
  while (server >= 0 && poll(ends, 2, -1) > 0) {
    const bool answer = ends[1].revents != 0;
    const ssize_t size = recv(answer ? server : client, bytes, sizeof bytes, 0);
    if (size <= 0) break;
    if (answer) std::this_thread::sleep_for(delay_);
    if (send(answer ? client : server, bytes, static_cast<std::size_t>(size), MSG_NOSIGNAL) < 0)
      break;
  }
  close(server);
}

std::string ask(std::uint16_t port, const std::string &request) {
  const int fd = connected_socket(port);
  std::string answer;
  if (fd >= 0 &&
      send(fd, request.data(), request.size(), 0) == static_cast<ssize_t>(request.size())) {
    char bytes[4096];
    for (ssize_t n = 0; (n = recv(fd, bytes, sizeof bytes, 0)) > 0;) {
      answer.append(bytes, static_cast<std::size_t>(n));
    }
  }
  close(fd);
  return answer;
}

}  // namespace nox::app::test
