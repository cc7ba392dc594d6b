#include "nox-visuals/commands/pen_stream.h"

#include <utility>

#include "nox-visuals/errors.h"
#include "nox-visuals/outputs/preview.h"
#include "nox-visuals/stream/delivery.h"
#include "nox-visuals/stream/module.h"
#include "nox-visuals/stream/pen_observer.h"
#include "nox-visuals/stream/stream.h"
#include "nox-visuals/stream/swapped_chroma.h"

namespace nox::app {
namespace {

constexpr const char *kTracker = "noxpentracker name=tracker ! fakesink name=pace sync=false";

std::string tail(const std::optional<std::string> &preview) {
  if (!preview) return kTracker;
  return "tee name=both ! queue max-size-buffers=2 ! " + std::string(kTracker) + "  both. ! " +
         preview_branch(*preview);
}

GstPointer<GstElement> named(GstElement *pipeline, const char *name) {
  return GstPointer<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline), name));
}

// A file that somebody watches runs at its own pace, not as fast as it goes.
void keep_pace(GstElement *pipeline) {
  g_object_set(named(pipeline, "pace").get(), "sync", TRUE, nullptr);
}

void prepare(GstElement *pipeline, bool swap_colours, PenObserver *observer, Preview *preview) {
  const auto tracker = named(pipeline, "tracker");
  observer->attach(tracker.get());
  if (swap_colours) {
    const GstPointer<GstPad> sink(gst_element_get_static_pad(tracker.get(), "sink"));
    swap_chroma(sink.get());
  }
  if (preview != nullptr) preview->attach(pipeline);
}

}  // namespace

int follow_pen(PenStream pen_stream) {
  demand_module();
  Counts counts;
  ObservationQueue queue(kDeliveryCapacity);
  PenObserver observer(&counts, [&queue](Observation it) { queue.push(std::move(it)); });
  auto preview = pen_stream.preview ? std::make_unique<Preview>() : nullptr;
  StreamPlan plan;
  plan.source = pen_stream.source;
  plan.word = pen_stream.word;
  plan.tail = tail(pen_stream.preview);
  plan.retry = pen_stream.retry;
  plan.started = [&, swap = pen_stream.swap_colours, ring = preview.get()](GstElement *pipeline) {
    prepare(pipeline, swap, &observer, ring);
  };
  plan.gone = [&observer] { observer.detach(); };

  Stream stream(&counts);
  stream.open(std::move(plan));
  if (stream.live()) {
    observer.tell_wall_time();
    queue.set_when_full(WhenFull::kDropOldest);
  } else if (preview != nullptr) {
    keep_pace(stream.pipeline());
  }
  auto outputs = pen_stream.open_outputs(stream.live());
  if (preview != nullptr) outputs.push_back(std::move(preview));
  Delivery delivery(&queue, std::move(pen_stream.steps), std::move(outputs), &counts,
                    [&stream] { stream.stop(); });
  const std::string failure = stream.run();
  delivery.finish(observer.now());
  if (!failure.empty()) throw StreamError(failure);
  return delivery.output_broken() ? kOutputFailed : kDone;
}

}  // namespace nox::app
