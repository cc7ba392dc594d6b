// Makes observations of what a pen tracker's pads see.
#ifndef NOX_VISUALS_STREAM_PEN_OBSERVER_H_
#define NOX_VISUALS_STREAM_PEN_OBSERVER_H_

#include <gst/gst.h>

#include <functional>
#include <optional>

#include "nox-visuals/observation.h"
#include "nox-visuals/stream/counts.h"

namespace nox::app {

// The element sends an event ahead of each buffer that shows the pen: a probe on its source pad
// joins the two, and sees from a buffer without one that the pen is lost.
class PenObserver {
 public:
  // `push` is called from the streaming thread, with Pen::at and Pen::stroke still unset. `counts`
  // must outlive it.
  PenObserver(Counts *counts, std::function<void(Observation)> push);

  // From now on moments carry the time of the clock on the wall too. Before the first frame.
  void tell_wall_time() { wall_time_ = true; }

  // Watches a tracker that has not started; it must be gone before the observer. A tracker is
  // watched after the other.
  void attach(GstElement *tracker);

  // The tracker is gone, and so is a pen that it saw.
  void detach();

  // The moment at which it is called, while no tracker runs.
  Moment now() const;

 private:
  struct Position {
    float x = 0;
    float y = 0;
    bool pressed = false;
  };

  static GstPadProbeReturn on_arrival(GstPad *pad, GstPadProbeInfo *info, gpointer observer);
  static GstPadProbeReturn on_departure(GstPad *pad, GstPadProbeInfo *info, gpointer observer);
  void frame_came(const GstBuffer *buffer);
  void event_left(GstEvent *event);
  void frame_left();
  void lose(bool pressed);

  bool wall_time_ = false;
  Counts *counts_;
  std::function<void(Observation)> push_;
  Moment frame_;                  // of the frame in the tracker
  std::optional<Position> seen_;  // in this frame
  std::optional<bool> pressed_;   // of the pen in the frame before; none when it had none
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_PEN_OBSERVER_H_
