// What GStreamer lacks to play something, and where Debian has it.
#ifndef NOX_VISUALS_STREAM_MISSING_PLUGIN_H_
#define NOX_VISUALS_STREAM_MISSING_PLUGIN_H_

#include <gst/gst.h>

#include <string>
#include <string_view>

namespace nox::app {

// As in "H.264 decoder; install gstreamer1.0-libav"; "" when the message tells of nothing missing.
std::string missing_plugin(GstMessage *message);

// Why a launch description cannot be understood; with the package of an element that is missing.
// Frees the error.
std::string parse_error(GError *error);

// The package for the last part of an installer detail, as in "decoder-video/x-h264, ..." or
// "element-vp8enc"; "" when it is not known.
std::string debian_package(std::string_view detail);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_MISSING_PLUGIN_H_
