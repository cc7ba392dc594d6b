#include "nox-visuals/stream/swapped_chroma.h"

#include <gst/video/video.h>

#include <utility>

#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

// The buffer's record of its planes; without one they lie as the caps say, and are recorded so.
GstVideoMeta *video_meta(GstPad *pad, GstBuffer *buffer) {
  GstVideoMeta *meta = gst_buffer_get_video_meta(buffer);
  if (meta != nullptr) return meta;
  const GstPointer<GstCaps> caps(gst_pad_get_current_caps(pad));
  GstVideoInfo info;
  if (caps == nullptr || gst_video_info_from_caps(&info, caps.get()) == FALSE) return nullptr;
  return gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE,
                                        GST_VIDEO_INFO_FORMAT(&info),
                                        static_cast<guint>(GST_VIDEO_INFO_WIDTH(&info)),
                                        static_cast<guint>(GST_VIDEO_INFO_HEIGHT(&info)),
                                        GST_VIDEO_INFO_N_PLANES(&info), info.offset, info.stride);
}

GstPadProbeReturn swap_planes(GstPad *pad, GstPadProbeInfo *info, gpointer /*data*/) {
  // Who else holds the buffer keeps its own view of the same memory.
  GstBuffer *buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
  GST_PAD_PROBE_INFO_DATA(info) = buffer;
  if (GstVideoMeta *meta = video_meta(pad, buffer); meta != nullptr && meta->n_planes >= 3) {
    std::swap(meta->offset[1], meta->offset[2]);
    std::swap(meta->stride[1], meta->stride[2]);
  }
  return GST_PAD_PROBE_OK;
}

}  // namespace

void swap_chroma(GstPad *sink) {
  gst_pad_add_probe(sink, GST_PAD_PROBE_TYPE_BUFFER, swap_planes, nullptr, nullptr);
}

}  // namespace nox::app
