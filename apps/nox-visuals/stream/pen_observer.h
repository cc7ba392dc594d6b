// Makes observations of what a pen tracker's pads see.
#ifndef NOX_VISUALS_STREAM_PEN_OBSERVER_H_
#define NOX_VISUALS_STREAM_PEN_OBSERVER_H_

#include <gst/gst.h>

#include <functional>
#include <optional>

#include "nox-visuals/observation.h"
#include "nox-visuals/steps/recovery.h"
#include "nox-visuals/steps/sighting.h"
#include "nox-visuals/stream/counts.h"
#include "nox-visuals/stream/observer.h"

namespace nox::app {

// The element sends an event ahead of each buffer that shows the pen: a probe on its source pad
// joins the two, and sees from a buffer without one that the pen is lost. With recovery it looks
// then at the buffer itself.
class PenObserver final : public Observer {
 public:
  // `push` is called from the streaming thread, with Pen::at and Pen::stroke still unset. `counts`
  // must outlive it.
  PenObserver(Counts *counts, std::function<void(Observation)> push, bool recover = false);

  const char *element() const override { return "tracker"; }
  void attach(GstElement *tracker) override;

  // Whether the pen was pressed in the last frame. From the streaming thread.
  bool pressed() const { return pressed_.value_or(false); }

  // A pen that the tracker saw is gone with it.
  void detach() override;

 private:
  static GstPadProbeReturn on_arrival(GstPad *pad, GstPadProbeInfo *info, gpointer observer);
  static GstPadProbeReturn on_departure(GstPad *pad, GstPadProbeInfo *info, gpointer observer);
  void frame_came(const GstBuffer *buffer);
  void event_left(GstEvent *event);
  void frame_left(GstPad *pad, GstBuffer *buffer);
  void recover(GstPad *pad, GstBuffer *buffer);
  void lose(bool pressed);

  Counts *counts_;
  std::function<void(Observation)> push_;
  Moment frame_;  // of the frame in the tracker
  std::optional<Recovery> recovery_;
  std::optional<Sighting> seen_;  // in this frame
  std::optional<bool> pressed_;   // of the pen in the frame before; none when it had none
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_PEN_OBSERVER_H_
