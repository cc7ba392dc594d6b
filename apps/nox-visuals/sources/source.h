// Where video comes from: what a SOURCE word names, and the bin that brings it.
#ifndef NOX_VISUALS_SOURCES_SOURCE_H_
#define NOX_VISUALS_SOURCES_SOURCE_H_

#include <gst/gst.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "nox-visuals/camera/camera_settings.h"
#include "nox-visuals/camera/mode_choice.h"

namespace nox::app {

enum class SourceKind {
  kFile,         // a path
  kAddress,      // a URI
  kCamera,       // a V4L2 device by any of its paths
  kScene,        // test:NAME
  kDescription,  // gst:DESCRIPTION
};

// How a camera is run.
struct CameraUse {
  std::optional<WantedMode> mode;  // none: the one that serves best
  CameraSettings settings;         // set each time before it starts
};

struct Source {
  SourceKind kind = SourceKind::kFile;
  std::string place;         // the path, the URI, the scene's name or the description
  std::uint64_t frames = 0;  // of a scene; 0: without end
  CameraUse camera;          // of a camera
};

// What `word` means. A word that means nothing, and a file or camera that is not there, throw
// StreamError.
Source parse_source(const std::string &word, std::uint64_t frames);

// The path of the file behind it; empty where there is none.
std::filesystem::path file_path(const Source &source);

// Whether it may go and come back, as cameras and live streams of a network do; `live` is what the
// pipeline found out.
bool comes_back(const Source &source, bool live);

// A bin with one pad "src" that brings raw video, whatever the format. The caller owns it
// (floating). Throws StreamError when it cannot be made.
GstElement *make_source_bin(const Source &source);

}  // namespace nox::app

#endif  // NOX_VISUALS_SOURCES_SOURCE_H_
