// The counts of a stream while it runs, written by several threads. Totals say what they mean.
#ifndef NOX_VISUALS_STREAM_COUNTS_H_
#define NOX_VISUALS_STREAM_COUNTS_H_

#include <atomic>
#include <cstdint>

#include "nox-visuals/observation.h"

namespace nox::app {

struct Counts {
  std::atomic<std::uint64_t> frames = 0;
  std::atomic<std::uint64_t> found = 0;
  std::atomic<std::uint64_t> losses = 0;
  std::atomic<std::uint64_t> losses_pressed = 0;
  std::atomic<std::uint64_t> dropped = 0;      // frames that a newer one replaced
  std::atomic<std::uint64_t> undelivered = 0;  // positions that outputs were too slow for

  Totals totals() const { return {frames, found, losses, losses_pressed, dropped, undelivered}; }
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_COUNTS_H_
