// Counts the frames that come to an element, and makes no observations.
#ifndef NOX_VISUALS_STREAM_FRAME_COUNTER_H_
#define NOX_VISUALS_STREAM_FRAME_COUNTER_H_

#include <gst/gst.h>

#include <string>
#include <utility>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/stream/counts.h"
#include "nox-visuals/stream/observer.h"

namespace nox::app {

class FrameCounter final : public Observer {
 public:
  // `counts` must outlive it.
  FrameCounter(std::string element, Counts *counts)
      : element_(std::move(element)), counts_(counts) {}

  const char *element() const override { return element_.c_str(); }
  void attach(GstElement *element) override {
    const GstPointer<GstPad> sink(gst_element_get_static_pad(element, "sink"));
    gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_BUFFER, on_buffer, counts_, nullptr);
  }

 private:
  static GstPadProbeReturn on_buffer(GstPad * /*pad*/, GstPadProbeInfo * /*info*/,
                                     gpointer counts) {
    ++static_cast<Counts *>(counts)->frames;
    return GST_PAD_PROBE_OK;
  }

  std::string element_;
  Counts *counts_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_FRAME_COUNTER_H_
