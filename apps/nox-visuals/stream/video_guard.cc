#include "nox-visuals/stream/video_guard.h"

#include <gst/video/video.h>

#include <optional>

#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

constexpr auto kEventOrBuffer =
    static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM | GST_PAD_PROBE_TYPE_BUFFER);

using Layout = std::optional<GstVideoInfo>;  // of the stream's caps; none when they tell no picture

void note_caps(GstEvent *event, Layout *layout) {
  if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS) return;
  GstCaps *caps = nullptr;
  gst_event_parse_caps(event, &caps);
  GstVideoInfo info;
  *layout = gst_video_info_from_caps(&info, caps) != FALSE ? Layout(info) : std::nullopt;
}

// A record that contradicts the caps is looked for first: to map such a buffer is a critical
// warning.
bool holds_picture(const Layout &layout, GstBuffer *buffer) {
  if (!layout) return false;
  const GstVideoMeta *meta = gst_buffer_get_video_meta(buffer);
  if (meta != nullptr && (meta->format != GST_VIDEO_INFO_FORMAT(&*layout) ||
                          meta->width < static_cast<guint>(GST_VIDEO_INFO_WIDTH(&*layout)) ||
                          meta->height < static_cast<guint>(GST_VIDEO_INFO_HEIGHT(&*layout)))) {
    return false;
  }
  GstVideoFrame frame;
  if (gst_video_frame_map(&frame, &*layout, buffer, GST_MAP_READ) == FALSE) return false;
  gst_video_frame_unmap(&frame);
  return true;
}

GstPadProbeReturn look(GstPad *pad, GstPadProbeInfo *info, gpointer data) {
  auto *layout = static_cast<Layout *>(data);
  if ((info->type & GST_PAD_PROBE_TYPE_BUFFER) == 0) {
    note_caps(GST_PAD_PROBE_INFO_EVENT(info), layout);
    return GST_PAD_PROBE_OK;
  }
  if (holds_picture(*layout, GST_PAD_PROBE_INFO_BUFFER(info))) return GST_PAD_PROBE_OK;
  const GstPointer<GstElement> element(gst_pad_get_parent_element(pad));
  GST_ELEMENT_ERROR(element.get(), STREAM, FORMAT,
                    ("A frame came that does not hold what its caps say."), (nullptr));
  return GST_PAD_PROBE_DROP;
}

void drop_layout(gpointer layout) {
  delete static_cast<Layout *>(layout);
}

}  // namespace

void guard_video(GstElement *element) {
  const GstPointer<GstPad> sink(gst_element_get_static_pad(element, "sink"));
  gst_pad_add_probe(sink.get(), kEventOrBuffer, look, new Layout, drop_layout);
}

}  // namespace nox::app
