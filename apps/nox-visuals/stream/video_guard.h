// Keeps away from the elements what they would answer with the end of the process.
#ifndef NOX_VISUALS_STREAM_VIDEO_GUARD_H_
#define NOX_VISUALS_STREAM_VIDEO_GUARD_H_

#include <gst/gst.h>

namespace nox::app {

// From now on a buffer that comes to the element's sink pad and holds no picture of its caps, as
// descriptions with wrong caps bring them, is dropped and posts an error on the bus. Before the
// stream starts.
void guard_video(GstElement *element);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_VIDEO_GUARD_H_
