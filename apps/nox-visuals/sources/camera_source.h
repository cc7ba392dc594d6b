// Cameras as sources.
#ifndef NOX_VISUALS_SOURCES_CAMERA_SOURCE_H_
#define NOX_VISUALS_SOURCES_CAMERA_SOURCE_H_

#include <gst/gst.h>

#include <string>

#include "nox-visuals/sources/source.h"

namespace nox::app {

// A bin as make_file_bin makes it, of the V4L2 device in the mode that is wanted or serves best.
// The camera is set first; what it does not take is said. Throws StreamError.
GstElement *make_camera_bin(const std::string &device, const CameraUse &use);

}  // namespace nox::app

#endif  // NOX_VISUALS_SOURCES_CAMERA_SOURCE_H_
