// Datagrams to one place over UDP.
#ifndef NOX_VISUALS_OUTPUTS_DATAGRAMS_H_
#define NOX_VISUALS_OUTPUTS_DATAGRAMS_H_

#include <cstdint>
#include <string>

#include "nox-visuals/outputs/address.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app {

class Datagrams {
 public:
  // `option` is what the sentences call this output, "--osc" say. Throws OutputError.
  Datagrams(const std::string &option, const Address &to, Say say);
  ~Datagrams();
  Datagrams(const Datagrams &) = delete;
  Datagrams &operator=(const Datagrams &) = delete;

  // Never waits.
  void send(const std::string &datagram);

  // Counts a refusal that has come since the last datagram.
  void check();

  // What the system refused, and what the other machine sent back because nobody listened. What the
  // network loses on its way, nobody learns.
  std::uint64_t undelivered() const { return undelivered_; }

 private:
  void fail(int error);

  std::string name_;
  Say say_;
  int socket_ = -1;
  std::uint64_t undelivered_ = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_DATAGRAMS_H_
