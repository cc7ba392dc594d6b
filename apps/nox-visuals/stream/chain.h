// All of a command that follows one stream: from the source through an observer and the steps to
// the outputs.
#ifndef NOX_VISUALS_STREAM_CHAIN_H_
#define NOX_VISUALS_STREAM_CHAIN_H_

#include <gst/gst.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "nox-visuals/observation.h"
#include "nox-visuals/outputs/output.h"
#include "nox-visuals/steps/step.h"
#include "nox-visuals/stream/counts.h"
#include "nox-visuals/stream/delivery.h"
#include "nox-visuals/stream/observation_queue.h"
#include "nox-visuals/stream/observer.h"
#include "nox-visuals/stream/stream.h"

namespace nox::app {

class Chain {
 public:
  // Makes the outputs once it is known whether the stream is live. May throw OutputError.
  using OpenOutputs = std::function<std::vector<std::unique_ptr<Output>>(bool live)>;

  // For the observer, which counts frames here and brings its observations while run() runs.
  Counts *counts() { return &counts_; }
  void push(Observation observation) { queue_.push(std::move(observation)); }

  // Runs until the source ends, a signal comes or stop() is called, and returns the exit status.
  // `plan` may prepare what the observer is not attached to. Throws StreamError when the stream
  // fails, after the end has gone to the outputs, and OutputError.
  int run(StreamPlan plan, Observer *observer, std::vector<std::unique_ptr<Step>> steps,
          const OpenOutputs &open_outputs);

  // Ends run() soon; from any thread, while it runs.
  void stop() { stream_->stop(); }

  // While run() runs.
  GstElement *pipeline() const { return stream_->pipeline(); }

 private:
  Counts counts_;
  ObservationQueue queue_{kDeliveryCapacity};
  Stream *stream_ = nullptr;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_CHAIN_H_
