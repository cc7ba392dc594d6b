#include "nox-visuals/commands/pen_stream.h"

#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/outputs/preview.h"
#include "nox-visuals/stream/chain.h"
#include "nox-visuals/stream/hiding.h"
#include "nox-visuals/stream/module.h"
#include "nox-visuals/stream/pen_observer.h"
#include "nox-visuals/stream/swapped_chroma.h"

namespace nox::app {
namespace {

constexpr const char *kTracker = "noxpentracker name=tracker ! fakesink name=pace sync=false";

constexpr const char *kLostPressed =
    "the pen was lost while it was pressed: it is found again only when it hovers "
    "(the end counts these as losses_pressed)";

std::string tail(const std::optional<std::string> &preview) {
  if (!preview) return kTracker;
  return "tee name=both ! queue max-size-buffers=2 ! " + std::string(kTracker) + "  both. ! " +
         preview_branch(*preview);
}

GstPointer<GstElement> named(GstElement *pipeline, const char *name) {
  return GstPointer<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline), name));
}

// Says once that a pressed pen was lost for longer than recovery waits for it.
class LossAdvice {
 public:
  ~LossAdvice() { tell(); }

  void look(const Observation &it) {
    const Pen *pen = std::get_if<Pen>(&it);
    if (pen != nullptr && !pen->recovered) tell();
    const Loss *loss = std::get_if<Loss>(&it);
    lost_ = loss != nullptr && loss->pressed;
  }

 private:
  void tell() {
    if (lost_ && !std::exchange(said_, true)) say(kLostPressed);
  }

  bool lost_ = false;  // while it was pressed, and not seen since
  bool said_ = false;
};

// A file that somebody watches runs at its own pace, not as fast as it goes.
void keep_pace(GstElement *pipeline) {
  g_object_set(named(pipeline, "pace").get(), "sync", TRUE, nullptr);
}

}  // namespace

int follow_pen(PenStream pen_stream) {
  demand_module();
  Chain chain;
  LossAdvice advice;
  const auto push = [&](Observation it) {
    advice.look(it);
    chain.push(std::move(it));
  };
  PenObserver observer(chain.counts(), push, pen_stream.recover);
  Hiding hiding(pen_stream.masks);
  auto preview = pen_stream.preview ? std::make_unique<Preview>() : nullptr;
  StreamPlan plan;
  plan.source = pen_stream.source;
  plan.word = pen_stream.word;
  plan.tail = tail(pen_stream.preview);
  plan.retry = pen_stream.retry;
  plan.started = [&, swap = pen_stream.swap_colours, ring = preview.get()](GstElement *pipeline) {
    const auto tracker = named(pipeline, "tracker");
    const GstPointer<GstPad> sink(gst_element_get_static_pad(tracker.get(), "sink"));
    if (swap) swap_chroma(sink.get());
    hiding.attach(sink.get(), [&observer] { return observer.pressed(); });
    if (ring != nullptr) ring->attach(pipeline);
  };
  return chain.run(std::move(plan), &observer, std::move(pen_stream.steps), [&](bool live) {
    if (preview != nullptr && !live) keep_pace(chain.pipeline());
    auto outputs = pen_stream.open_outputs(live);
    if (preview != nullptr) outputs.push_back(std::move(preview));
    return outputs;
  });
}

}  // namespace nox::app
