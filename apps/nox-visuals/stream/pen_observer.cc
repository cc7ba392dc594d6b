#include "nox-visuals/stream/pen_observer.h"

#include <utility>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/stream/mapped_picture.h"

namespace nox::app {
namespace {

constexpr auto kEventOrBuffer =
    static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_BUFFER);

}  // namespace

PenObserver::PenObserver(Counts *counts, std::function<void(Observation)> push, bool recover)
    : counts_(counts), push_(std::move(push)) {
  if (recover) recovery_.emplace();
}

void PenObserver::attach(GstElement *tracker) {
  const GstPointer<GstPad> sink(gst_element_get_static_pad(tracker, "sink"));
  const GstPointer<GstPad> src(gst_element_get_static_pad(tracker, "src"));
  gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_BUFFER, on_arrival, this, nullptr);
  gst_pad_add_probe(src.get(), kEventOrBuffer, on_departure, this, nullptr);
}

void PenObserver::detach() {
  seen_.reset();
  if (recovery_) recovery_->forget();
  const auto pts = frame_.pts_ns;
  frame_ = now();
  frame_.pts_ns = pts;
  if (const auto pressed = std::exchange(pressed_, std::nullopt)) lose(*pressed);
}

GstPadProbeReturn PenObserver::on_arrival(GstPad * /*pad*/, GstPadProbeInfo *info,
                                          gpointer observer) {
  static_cast<PenObserver *>(observer)->frame_came(GST_PAD_PROBE_INFO_BUFFER(info));
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn PenObserver::on_departure(GstPad *pad, GstPadProbeInfo *info, gpointer observer) {
  auto *self = static_cast<PenObserver *>(observer);
  if ((info->type & GST_PAD_PROBE_TYPE_BUFFER) != 0) {
    self->frame_left(pad, GST_PAD_PROBE_INFO_BUFFER(info));
  } else {
    self->event_left(GST_PAD_PROBE_INFO_EVENT(info));
  }
  return GST_PAD_PROBE_OK;
}

void PenObserver::frame_came(const GstBuffer *buffer) {
  ++counts_->frames;
  frame_ = moment_of(buffer);
}

void PenObserver::event_left(GstEvent *event) {
  if (gst_event_has_name(event, "NoxTrackingData") == FALSE) return;
  Sighting position;
  gboolean pressed = FALSE;
  gst_structure_get(gst_event_get_structure(event), "x", G_TYPE_FLOAT, &position.x, "y",
                    G_TYPE_FLOAT, &position.y, "pressed", G_TYPE_BOOLEAN, &pressed, nullptr);
  position.pressed = pressed != FALSE;
  seen_ = position;
}

void PenObserver::recover(GstPad *pad, GstBuffer *buffer) {
  if (seen_) {
    recovery_->saw(*seen_);
  } else if (recovery_->looks()) {
    MappedPicture picture(pad, buffer);
    if (picture.frame() != nullptr) seen_ = recovery_->look(*picture.frame());
  }
}

void PenObserver::frame_left(GstPad *pad, GstBuffer *buffer) {
  if (recovery_) recover(pad, buffer);
  const auto seen = std::exchange(seen_, std::nullopt);
  const auto before = std::exchange(pressed_, seen ? std::optional(seen->pressed) : std::nullopt);
  if (seen) {
    ++counts_->found;
    push_(Pen{frame_, {}, seen->pressed, {seen->x, seen->y}, 0, seen->recovered});
  } else if (before) {
    lose(*before);
  }
}

void PenObserver::lose(bool pressed) {
  ++counts_->losses;
  if (pressed) ++counts_->losses_pressed;
  push_(Loss{frame_, pressed});
}

}  // namespace nox::app
