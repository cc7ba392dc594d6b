// The thread that takes observations from the stream, through the steps, to every output.
#ifndef NOX_VISUALS_STREAM_DELIVERY_H_
#define NOX_VISUALS_STREAM_DELIVERY_H_

#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "nox-visuals/observation.h"
#include "nox-visuals/outputs/output.h"
#include "nox-visuals/steps/step.h"
#include "nox-visuals/stream/counts.h"
#include "nox-visuals/stream/observation_queue.h"

namespace nox::app {

// How many observations may wait: half a minute's at 30 a second. Outputs that are slower than that
// have stopped.
inline constexpr std::size_t kDeliveryCapacity = 1000;

class Delivery {
 public:
  // Takes from `queue`, which must outlive it as `counts` must. When every output is broken,
  // `give_up` is called once, from the thread.
  Delivery(ObservationQueue *queue, std::vector<std::unique_ptr<Step>> steps,
           std::vector<std::unique_ptr<Output>> outputs, const Counts *counts,
           std::function<void()> give_up);
  ~Delivery();

  // Sends the end of the stream with the final counts, waits until everything is delivered, and
  // ends the thread.
  void finish(const Moment &when);

  // Whether an output broke on the way.
  bool output_broken() const;

 private:
  void run();
  bool deliver(const Observation &observation);
  void tick();
  Totals totals() const;

  ObservationQueue *queue_;
  std::vector<std::unique_ptr<Step>> steps_;
  std::vector<std::unique_ptr<Output>> outputs_;
  const Counts *counts_;
  std::function<void()> give_up_;
  std::thread thread_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_DELIVERY_H_
