// The pipeline between a source and what a command does with its frames.
#ifndef NOX_VISUALS_STREAM_PIPELINE_H_
#define NOX_VISUALS_STREAM_PIPELINE_H_

#include <gst/gst.h>

#include <string>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/sources/source.h"

namespace nox::app {

// The queue between a source and the rest.
inline constexpr const char *kArrivals = "arrivals";

// SOURCE ! queue name=arrivals ! videoconvert ! I420 or A420 ! TAIL, not yet started. The source
// runs in threads of its own before the queue, the tail in one behind it. Throws StreamError.
GstPointer<GstElement> make_pipeline(const Source &source, const std::string &tail);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_PIPELINE_H_
