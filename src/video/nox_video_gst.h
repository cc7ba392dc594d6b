// From GStreamer's mapped frames to the cores' picture record. The only header here that needs
// GStreamer.
#ifndef VIDEO_NOX_VIDEO_GST_H_
#define VIDEO_NOX_VIDEO_GST_H_

#include <gst/video/video.h>

#include "video/nox_video_frame.h"

// Fills every field of `frame` from a mapped `gst_frame`: the planes and strides are GStreamer's
// own, no pixel is copied, and the record holds until gst_video_frame_unmap. Plane sizes are the
// component sizes, so the chroma of an odd size is rounded up here. The format code carries range
// and matrix from the frame's colorimetry; a format without a code of its own gets code 0 and
// GStreamer's planes.
void nox_video_frame_from_gst_video_frame(NoxVideoFrame *frame, const GstVideoFrame *gst_frame);

#endif  // VIDEO_NOX_VIDEO_GST_H_
