// Where observations leave the program: one class a protocol, one file a class.
#ifndef NOX_VISUALS_OUTPUTS_OUTPUT_H_
#define NOX_VISUALS_OUTPUTS_OUTPUT_H_

#include <cstdint>
#include <functional>
#include <string>

#include "nox-visuals/observation.h"

namespace nox::app {

// Tells a person one sentence, without a line end: a broker that went, a file that stayed empty.
// Outputs call it from the thread that calls them.
using Say = std::function<void(const std::string &sentence)>;

// All calls come from one thread, in the order of the stream. None of them waits for the other
// side: what cannot be sent now is queued within bounds, or counted as undelivered.
// A constructor throws OutputError when the output cannot be opened at all.
class Output {
 public:
  Output() = default;
  virtual ~Output() = default;
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;

  virtual void take(const Observation &observation) = 0;

  // Comes at least every 100 ms, also while nothing happens. `now_ns` is monotonic time, the same
  // clock as Moment::entered_ns; `totals` are the counts so far.
  virtual void tick(std::int64_t /*now_ns*/, const Totals & /*totals*/) {}

  // Comes once, before the End: waits, for at most two seconds, until what is queued has gone out,
  // and counts the rest as undelivered.
  virtual void drain() {}

  // How many messages could not be delivered so far.
  virtual std::uint64_t undelivered() const { return 0; }

  // Whether nothing more can ever be sent, which the output has said to people by then.
  virtual bool broken() const { return false; }
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_OUTPUT_H_
