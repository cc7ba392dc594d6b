// The generated scenes as live sources, for trying things out without a camera.
#ifndef NOX_VISUALS_SOURCES_SCENE_SOURCE_H_
#define NOX_VISUALS_SOURCES_SCENE_SOURCE_H_

#include <gst/gst.h>

#include <cstdint>
#include <string>

namespace nox::app {

// A bin with one pad "src" that brings `frames` frames (0: without end) of the scene pen, qr or
// edges, 30 a second of the clock. Throws StreamError for any other name, and where the program was
// built without the scenes.
GstElement *make_scene_bin(const std::string &scene, std::uint64_t frames);

}  // namespace nox::app

#endif  // NOX_VISUALS_SOURCES_SCENE_SOURCE_H_
