// What looks at the frames of a stream and makes observations of them.
#ifndef NOX_VISUALS_STREAM_OBSERVER_H_
#define NOX_VISUALS_STREAM_OBSERVER_H_

#include <gst/gst.h>

#include <cstdint>

#include "nox-visuals/observation.h"

namespace nox::app {

class Observer {
 public:
  Observer() = default;
  virtual ~Observer() = default;
  Observer(const Observer &) = delete;
  Observer &operator=(const Observer &) = delete;

  // The element of a pipeline to attach to, by its name there.
  virtual const char *element() const = 0;

  // Watches an element that has not started; it must be gone before the observer. One is watched
  // after the other.
  virtual void attach(GstElement *element) = 0;

  // The element is gone, and another one will be attached.
  virtual void detach() {}

  // The stream is live: its moments carry the time of the clock on the wall too. Before the first
  // frame.
  virtual void go_live() { live_ = true; }

  // Every frame has been there: waits until every observation is made.
  virtual void finish() {}

  // The moment at which it is called.
  Moment now() const {
    Moment now;
    if (live_) now.unix_us = g_get_real_time();
    now.entered_ns = g_get_monotonic_time() * 1000;
    return now;
  }

 protected:
  // The same for a frame that comes.
  Moment moment_of(const GstBuffer *buffer) const {
    Moment moment = now();
    if (GST_BUFFER_PTS_IS_VALID(buffer)) moment.pts_ns = static_cast<std::int64_t>(buffer->pts);
    return moment;
  }

 private:
  bool live_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_OBSERVER_H_
