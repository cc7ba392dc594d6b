// The generated scenes as live sources, for trying things out without a camera.
#ifndef NOX_VISUALS_SOURCES_SCENE_SOURCE_H_
#define NOX_VISUALS_SOURCES_SCENE_SOURCE_H_

#include <gst/gst.h>

#include <cstdint>
#include <string>

namespace nox::app {

struct Scene {
  std::string name;          // pen, qr or edges
  std::uint64_t frames = 0;  // 0: without end
  int width = 640;           // a multiple of 8; the height is even
  int height = 360;
  bool live = true;  // 30 frames a second of the clock, or as fast as they are taken
};

// A bin with one pad "src" that brings the frames, 30 a second by their time stamps. Throws
// StreamError for a name that is none, and where the program was built without the scenes.
GstElement *make_scene_bin(const Scene &scene);

}  // namespace nox::app

#endif  // NOX_VISUALS_SOURCES_SCENE_SOURCE_H_
