// From a host's name to its numbers, without waiting for ever.
#ifndef NOX_VISUALS_OUTPUTS_RESOLVE_H_
#define NOX_VISUALS_OUTPUTS_RESOLVE_H_

#include <sys/socket.h>

#include <chrono>

#include "nox-visuals/outputs/address.h"

namespace nox::app {

struct SocketAddress {
  sockaddr_storage storage{};
  socklen_t length = 0;

  const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&storage); }
};

// A name server that does not answer keeps the system's resolver busy for half a minute and more.
inline constexpr std::chrono::seconds kResolvePatience{5};

// Of a name with numbers of both kinds the IPv4 one is taken: receivers of OSC and TUIO listen
// there first, and over UDP nobody tells that nobody listens. Throws OutputError.
SocketAddress resolve(const Address &address,
                      std::chrono::milliseconds patience = kResolvePatience);

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_RESOLVE_H_
