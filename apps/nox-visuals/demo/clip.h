// Clips of the generated scenes, and pipelines that run to their end.
#ifndef NOX_VISUALS_DEMO_CLIP_H_
#define NOX_VISUALS_DEMO_CLIP_H_

#include <gst/gst.h>

#include <string>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/sources/scene_source.h"

namespace nox::app::demo {

// Of a launch description. Throws StreamError.
GstPointer<GstElement> parse_pipeline(const std::string &description);

// The same behind a bin, whose pad "src" is linked to the element `first` of the description.
GstPointer<GstElement> parse_pipeline_behind(GstElement *bin, const std::string &description,
                                             const char *first);

// Sets the file of an element, whose name may hold what a launch description would take for its
// own.
void set_location(GstElement *pipeline, const char *element, const std::string &path);

// Runs it until its end. Throws StreamError.
void run_to_end(GstElement *pipeline);

// Encodes the frames of a scene into a WebM file. Throws StreamError.
void write_clip(Scene scene, const std::string &path);

}  // namespace nox::app::demo

#endif  // NOX_VISUALS_DEMO_CLIP_H_
