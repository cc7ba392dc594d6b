// The counts of a stream in Prometheus' text format.
#ifndef NOX_VISUALS_OUTPUTS_METRICS_PAGE_H_
#define NOX_VISUALS_OUTPUTS_METRICS_PAGE_H_

#include <array>
#include <cstdint>
#include <string>

#include "nox-visuals/observation.h"

namespace nox::app {

// How long after the frame came to the element its observation went out.
class LatencyHistogram {
 public:
  // Upper bounds in milliseconds, the bound itself included: around the frame times of 25, 30 and
  // 60 pictures a second, and up to where a stream hangs.
  static constexpr std::array<int, 13> kBoundsMs = {1,  2,  4,   8,   12,   17,  25,
                                                    34, 50, 100, 250, 1000, 5000};

  void add(std::int64_t latency_ns);
  std::string text(const std::string &name, const std::string &label) const;

 private:
  std::array<std::uint64_t, kBoundsMs.size() + 1> counts_{};  // the last one has no bound
  std::int64_t sum_ns_ = 0;
};

std::string metrics_page(const std::string &stream, const Totals &totals,
                         const LatencyHistogram &latency);

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_METRICS_PAGE_H_
