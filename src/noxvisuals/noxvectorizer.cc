/**
 * SECTION:element-noxvectorizer
 * @title: noxvectorizer
 *
 * Replaces each I420 or A420 frame by a drawing of itself: the picture washed out towards white,
 * but for edges that have stood still for 100 frames, which are held at full strength for 499
 * frames more. For every buffer that comes in a deep copy goes out; the one that came in is never
 * written, and an alpha plane is passed on as it is. A change of the size starts anew.
 *
 * |[
 * gst-launch-1.0 v4l2src ! videoconvert ! noxvectorizer ! videoconvert ! autovideosink
 * ]|
 */
#include "noxvisuals/noxvectorizer.h"

#include <gst/gst.h>
#include <gst/video/video.h>

#include "noxvisuals/fatal_asserts.h"
#include "noxvisuals/planar_pads.h"
#include "noxvisuals/whole_frame.h"
#include "vectorizer/vectorizer.h"

struct NoxVectorizer {
  GstElement parent;
  GstPad *srcpad;
  GstPad *sinkpad;
  VectorizerState *state;  // owned
  GstVideoInfo info;       // of the sink pad's caps
};

struct NoxVectorizerClass {
  GstElementClass parent_class;
};

GST_DEBUG_CATEGORY_STATIC(nox_vectorizer_debug);
#define GST_CAT_DEFAULT nox_vectorizer_debug

G_DEFINE_TYPE(NoxVectorizer, nox_vectorizer, GST_TYPE_ELEMENT)

namespace {

using nox::noxvisuals::kPlanarCaps;
using nox::noxvisuals::new_proxy_pad;
using nox::noxvisuals::Touches;
using nox::noxvisuals::WholeFrame;

GstStaticPadTemplate sink_template =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(kPlanarCaps));
GstStaticPadTemplate src_template =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(kPlanarCaps));

NoxVectorizer *nox_vectorizer_cast(gpointer object) {
  return G_TYPE_CHECK_INSTANCE_CAST(object, nox_vectorizer_get_type(), NoxVectorizer);
}

// There are no properties: whatever id is asked for is wrong.
void nox_vectorizer_set_property(GObject *object, guint id, const GValue * /*value*/,
                                 GParamSpec *pspec) {
  G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
}

void nox_vectorizer_get_property(GObject *object, guint id, GValue * /*value*/, GParamSpec *pspec) {
  G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
}

gboolean nox_vectorizer_sink_event(GstPad *pad, GstObject *parent, GstEvent *event) {
  NoxVectorizer *self = nox_vectorizer_cast(parent);
  if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
    GstCaps *caps = nullptr;
    gst_event_parse_caps(event, &caps);
    GST_DEBUG_OBJECT(self, "Got caps-event: %p", static_cast<void *>(caps));
    const gboolean ret = gst_video_info_from_caps(&self->info, caps);
    g_assert(ret);
  }
  return gst_pad_event_default(pad, parent, event);
}

// The copy is drawn over itself. It is always a copy, also of a buffer that could be written to:
// nobody who kept a pointer to the one that came in sees it change.
GstFlowReturn nox_vectorizer_chain(GstPad * /*pad*/, GstObject *parent, GstBuffer *buffer) {
  NoxVectorizer *self = nox_vectorizer_cast(parent);
  GstBuffer *out = gst_buffer_copy_deep(buffer);
  gst_buffer_unref(buffer);
  GstVideoFrame mapped;
  constexpr auto kReadWrite = static_cast<GstMapFlags>(GST_MAP_READ | GST_MAP_WRITE);
  const gboolean ret = gst_video_frame_map(&mapped, &self->info, out, kReadWrite);
  g_assert(ret);
  WholeFrame frame(mapped, Touches::kPlanes);
  vectorizer_process(self->state, &frame.get(), &frame.get());
  frame.write_back();
  gst_video_frame_unmap(&mapped);
  return gst_pad_push(self->srcpad, out);
}

void nox_vectorizer_dispose(GObject *object) {
  // Cleared, since GObject may dispose an object more than once.
  g_clear_pointer(&nox_vectorizer_cast(object)->state, vectorizer_free);
  G_OBJECT_CLASS(nox_vectorizer_parent_class)->dispose(object);
}

}  // namespace

static void nox_vectorizer_class_init(NoxVectorizerClass *klass) {
  auto *object_class = G_OBJECT_CLASS(klass);
  auto *element_class = GST_ELEMENT_CLASS(klass);

  object_class->dispose = GST_DEBUG_FUNCPTR(nox_vectorizer_dispose);
  object_class->set_property = GST_DEBUG_FUNCPTR(nox_vectorizer_set_property);
  object_class->get_property = GST_DEBUG_FUNCPTR(nox_vectorizer_get_property);
  gst_element_class_set_static_metadata(element_class, "Video Vectorizer", "Filter/Tracker/Video",
                                        "Part of the nox video plugin",
                                        "The noxvisuals developers");
  gst_element_class_add_static_pad_template(element_class, &src_template);
  gst_element_class_add_static_pad_template(element_class, &sink_template);
  if (nox_vectorizer_debug == nullptr) {
    GST_DEBUG_CATEGORY_INIT(nox_vectorizer_debug, "noxvectorizer", 0, "noxvectorizer");
  }
}

static void nox_vectorizer_init(NoxVectorizer *self) {
  self->srcpad = new_proxy_pad(&src_template, "src");
  gst_element_add_pad(GST_ELEMENT(self), self->srcpad);
  self->sinkpad = new_proxy_pad(&sink_template, "sink");
  gst_pad_set_event_function(self->sinkpad, GST_DEBUG_FUNCPTR(nox_vectorizer_sink_event));
  gst_pad_set_chain_function(self->sinkpad, GST_DEBUG_FUNCPTR(nox_vectorizer_chain));
  gst_element_add_pad(GST_ELEMENT(self), self->sinkpad);
  self->state = vectorizer_new();
}
