#include "nox-visuals/outputs/resolve.h"

#include <netdb.h>

#include <cerrno>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <thread>

#include "nox-visuals/outputs/output_error.h"

namespace nox::app {
namespace {

struct Answer {
  SocketAddress address;
  std::string error;  // empty when there is an address
};

Answer look_up(const std::string &host, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_DGRAM;
  addrinfo *list = nullptr;
  const int failed = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list);
  if (failed != 0) {
    return {{}, failed == EAI_SYSTEM ? std::strerror(errno) : gai_strerror(failed)};
  }
  const std::unique_ptr<addrinfo, void (*)(addrinfo *)> owner(list, freeaddrinfo);
  const addrinfo *best = list;
  for (const addrinfo *entry = list; entry != nullptr; entry = entry->ai_next) {
    if (entry->ai_family == AF_INET && best->ai_family != AF_INET) best = entry;
  }
  Answer answer;
  std::memcpy(&answer.address.storage, best->ai_addr, best->ai_addrlen);
  answer.address.length = best->ai_addrlen;
  return answer;
}

}  // namespace

SocketAddress resolve(const Address &address, std::chrono::milliseconds patience) {
  // Nothing can call the system's resolver back, so it has a thread that may outlive this call.
  std::promise<Answer> promise;
  std::future<Answer> future = promise.get_future();
  std::thread([host = address.host, port = address.port, promise = std::move(promise)]() mutable {
    promise.set_value(look_up(host, port));
  }).detach();
  if (future.wait_for(patience) != std::future_status::ready) {
    throw OutputError("the name " + address.host +
                      " was not resolved in time; is a name server in reach?");
  }
  const Answer answer = future.get();
  if (!answer.error.empty()) {
    throw OutputError("the name " + address.host + " does not resolve: " + answer.error);
  }
  return answer.address;
}

}  // namespace nox::app
