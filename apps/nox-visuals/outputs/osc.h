// Where the pen is, as plain OSC messages: hovering too.
#ifndef NOX_VISUALS_OUTPUTS_OSC_H_
#define NOX_VISUALS_OUTPUTS_OSC_H_

#include <string>

#include "nox-visuals/outputs/datagrams.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app {

// Each message is a datagram of its own, since simple receivers do not open bundles:
//   /nox/S/pen ,ffi (x y pressed), then /nox/S/x ,f, /nox/S/y ,f and /nox/S/pressed ,i
//   /nox/S/lost without arguments, and /nox/S/pressed ,i 0 after a loss while pressed
class Osc : public Output {
 public:
  Osc(const Address &to, const std::string &stream, Say say);

  void take(const Observation &observation) override;
  void drain() override { datagrams_.check(); }
  std::uint64_t undelivered() const override { return datagrams_.undelivered(); }

 private:
  void send_pen(const Pen &pen);
  void send_loss(const Loss &loss);

  std::string prefix_;
  Datagrams datagrams_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_OSC_H_
