// The pipeline between a source and what a command does with its frames.
#ifndef NOX_VISUALS_STREAM_PIPELINE_H_
#define NOX_VISUALS_STREAM_PIPELINE_H_

#include <gst/gst.h>

#include <string>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/sources/source.h"

namespace nox::app {

// SOURCE ! queue name=arrivals ! videoconvert ! I420 or A420 ! TAIL, not yet started. The source
// runs in threads of its own before the queue, the tail in one behind it. Throws StreamError.
GstPointer<GstElement> make_pipeline(const Source &source, const std::string &tail);

// From now on the queue keeps the newest frame only; `dropped` is called for each that goes.
void keep_newest_only(GstElement *pipeline, void (*dropped)(GstElement *queue, gpointer data),
                      gpointer data);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_PIPELINE_H_
