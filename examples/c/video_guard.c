/* cc -c video_guard.c $(pkg-config --cflags gstreamer-video-1.0) */
#include "video_guard.h"

#include <gst/video/video.h>

typedef struct {
  GstVideoInfo info;
  gboolean known; /* `info` is that of the stream's caps */
} VideoGuard;

/* A meta that contradicts the caps is looked for first: the attempt to map would be a critical
 * warning, which some hosts make fatal. */
static gboolean holds_a_picture(const VideoGuard *guard, GstBuffer *buffer) {
  const GstVideoMeta *meta = gst_buffer_get_video_meta(buffer);
  GstVideoFrame frame;
  if (!guard->known) return FALSE;
  if (meta != NULL && (meta->format != GST_VIDEO_INFO_FORMAT(&guard->info) ||
                       meta->width < (guint)GST_VIDEO_INFO_WIDTH(&guard->info) ||
                       meta->height < (guint)GST_VIDEO_INFO_HEIGHT(&guard->info)))
    return FALSE;
  if (!gst_video_frame_map(&frame, &guard->info, buffer, GST_MAP_READ)) return FALSE;
  gst_video_frame_unmap(&frame);
  return TRUE;
}

static GstPadProbeReturn keep_away(GstPad *pad, const gchar *what) {
  GstElement *element = gst_pad_get_parent_element(pad);
  if (element != NULL) {
    GST_ELEMENT_ERROR(element, STREAM, FORMAT, ("%s", what), ("kept away from the element"));
    gst_object_unref(element);
  }
  return GST_PAD_PROBE_DROP;
}

static GstPadProbeReturn look_at_event(GstPad *pad, VideoGuard *guard, GstEvent *event) {
  GstCaps *caps;
  if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS) return GST_PAD_PROBE_OK;
  gst_event_parse_caps(event, &caps);
  guard->known = gst_video_info_from_caps(&guard->info, caps);
  return guard->known ? GST_PAD_PROBE_OK : keep_away(pad, "Caps that tell no picture");
}

static GstPadProbeReturn look(GstPad *pad, GstPadProbeInfo *info, gpointer data) {
  VideoGuard *guard = data;
  if (GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM)
    return look_at_event(pad, guard, GST_PAD_PROBE_INFO_EVENT(info));
  return holds_a_picture(guard, GST_PAD_PROBE_INFO_BUFFER(info))
             ? GST_PAD_PROBE_OK
             : keep_away(pad, "A buffer that holds no picture of its caps");
}

void video_guard_add(GstElement *element) {
  GstPad *pad = gst_element_get_static_pad(element, "sink");
  gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, look,
                    g_new0(VideoGuard, 1), g_free);
  gst_object_unref(pad);
}
