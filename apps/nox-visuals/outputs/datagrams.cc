#include "nox-visuals/outputs/datagrams.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/resolve.h"

namespace nox::app {
namespace {

int open_socket(const std::string &name, const Address &to) {
  SocketAddress address;
  try {
    address = resolve(to);
  } catch (const OutputError &error) {
    throw OutputError(name + ": " + error.what());
  }
  const int fd = socket(address.storage.ss_family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  const int yes = 1;
  // Connected, so that the system tells when nobody listens.
  if (fd < 0 || setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &yes, sizeof yes) != 0 ||
      connect(fd, address.get(), address.length) != 0) {
    const std::string why = std::strerror(errno);
    if (fd >= 0) close(fd);
    throw OutputError(name + ": cannot be reached: " + why);
  }
  return fd;
}

}  // namespace

Datagrams::Datagrams(const std::string &option, const Address &to, Say say)
    : name_(option + " " + to_string(to)), say_(std::move(say)), socket_(open_socket(name_, to)) {}

Datagrams::~Datagrams() {
  close(socket_);
}

void Datagrams::send(const std::string &datagram) {
  if (::send(socket_, datagram.data(), datagram.size(), 0) >= 0) return;
  const int error = errno;
  fail(error);
  // That refusal was about an earlier datagram, and this one has not been sent.
  if (error == ECONNREFUSED && ::send(socket_, datagram.data(), datagram.size(), 0) < 0) {
    fail(errno);
  }
}

void Datagrams::check() {
  int error = 0;
  socklen_t size = sizeof error;
  if (getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error != 0) fail(error);
}

void Datagrams::fail(int error) {
  ++undelivered_;
  if (undelivered_ > 1) return;
  say_(name_ + ": " +
       (error == ECONNREFUSED ? std::string("nobody listens there") : std::strerror(error)) +
       "; what is not delivered is counted");
}

}  // namespace nox::app
