#include "nox-visuals/stream/chain.h"

#include <string>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/outputs/output_error.h"

namespace nox::app {

int Chain::run(StreamPlan plan, Observer *observer, std::vector<std::unique_ptr<Step>> steps,
               const OpenOutputs &open_outputs) {
  // Gone before the observer, however this ends.
  Stream stream(&counts_);
  stream_ = &stream;
  plan.started = [observer, prepare = std::move(plan.started)](GstElement *pipeline) {
    const GstPointer<GstElement> element(
        gst_bin_get_by_name(GST_BIN(pipeline), observer->element()));
    observer->attach(element.get());
    prepare(pipeline);
  };
  plan.gone = [observer] { observer->detach(); };
  plan.hurry = [this] { queue_.set_when_full(WhenFull::kDropOldest); };
  stream.open(std::move(plan));
  if (stream.live()) {
    observer->go_live();
    queue_.set_when_full(WhenFull::kDropOldest);
  }
  Delivery delivery(&queue_, std::move(steps), open_outputs(stream.live()), &counts_,
                    [this] { stop(); });
  const Failure failure = stream.run();
  observer->finish();
  delivery.finish(observer->now());
  if (failure.of_output) throw OutputError(failure.why);
  if (!failure.why.empty()) throw StreamError(failure.why);
  return delivery.output_broken() ? kOutputFailed : kDone;
}

}  // namespace nox::app
