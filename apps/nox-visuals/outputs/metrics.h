// The counts of the stream for Prometheus, over HTTP.
#ifndef NOX_VISUALS_OUTPUTS_METRICS_H_
#define NOX_VISUALS_OUTPUTS_METRICS_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "nox-visuals/outputs/address.h"
#include "nox-visuals/outputs/metrics_page.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app {

// Answers GET /metrics in a thread of its own.
class Metrics : public Output {
 public:
  // `now_ns` is the clock of Moment::entered_ns. Throws OutputError when the address is not one of
  // this machine or its port is taken.
  Metrics(const Address &listen, const std::string &stream, std::function<std::int64_t()> now_ns);
  ~Metrics() override;

  void take(const Observation &observation) override;
  void tick(std::int64_t now_ns, const Totals &totals) override;

 private:
  class Server;

  std::string page() const;

  std::string stream_;
  std::function<std::int64_t()> now_ns_;
  mutable std::mutex mutex_;  // of what the server's thread reads
  Totals totals_;
  LatencyHistogram latency_;
  std::unique_ptr<Server> server_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_METRICS_H_
