/**
 * SECTION:element-noxpentracker
 * @title: noxpentracker
 *
 * Watches I420 or A420 video for a pen of light: a small bright spot inside a strongly coloured
 * region, blue while it hovers, red while it is pressed. Every buffer passes on unchanged. Ahead of
 * each one that shows the pen goes a custom downstream event with the structure
 *
 * |[
 * NoxTrackingData, x=(float), y=(float), pressed=(boolean)
 * ]|
 *
 * where x counts from 0 at the right edge of the picture towards 1 at the left, mirrored as for
 * somebody who faces the camera, and y from 0 at the top towards 1. The object in
 * #NoxPenTracker:navigation-object is told the same.
 *
 * The element keeps its reference to that object beyond its own end: a host sets the property to
 * %NULL before it drops the element. The property may be set while the stream runs, by one thread
 * at a time.
 *
 * |[
 * GST_DEBUG=noxvideotracker:DEBUG gst-launch-1.0 v4l2src ! videoconvert ! noxpentracker !
 * videoconvert ! autovideosink
 * ]|
 */
#include "noxvisuals/noxpentracker.h"

#include <gst/gst.h>
#include <gst/video/video.h>

#include <cstdint>

#include "navigation/nox_navigation.h"
#include "noxvisuals/fatal_asserts.h"
#include "noxvisuals/planar_pads.h"
#include "noxvisuals/whole_frame.h"
#include "pentracker/pen_tracker.h"

struct NoxPenTracker {
  GstElement parent;
  GstPad *srcpad;
  GstPad *sinkpad;
  PenTracker *tracker;  // owned
  GstVideoInfo info;    // of the sink pad's caps
  // The reference that the property keeps, exchanged atomically. It is never followed: the
  // streaming thread reaches the object through the weak reference beside it, from which it takes a
  // strong one for the length of a call, so that no object goes away while it is being told a
  // position.
  gpointer navigation;
  GWeakRef navigation_alive;
};

struct NoxPenTrackerClass {
  GstElementClass parent_class;
};

GST_DEBUG_CATEGORY_STATIC(nox_pen_tracker_debug);
#define GST_CAT_DEFAULT nox_pen_tracker_debug

G_DEFINE_TYPE(NoxPenTracker, nox_pen_tracker, GST_TYPE_ELEMENT)

namespace {

constexpr guint kNavigationObject = 1;

using nox::noxvisuals::kPlanarCaps;
using nox::noxvisuals::new_proxy_pad;
using nox::noxvisuals::Touches;
using nox::noxvisuals::WholeFrame;

GstStaticPadTemplate sink_template =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(kPlanarCaps));
GstStaticPadTemplate src_template =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(kPlanarCaps));

struct Position {
  float x;  // fractions, as in the element's description
  float y;
  std::int32_t pressed;
};

NoxPenTracker *nox_pen_tracker_cast(gpointer object) {
  return G_TYPE_CHECK_INSTANCE_CAST(object, nox_pen_tracker_get_type(), NoxPenTracker);
}

void set_navigation(NoxPenTracker *self, gpointer navigation) {
  g_weak_ref_set(&self->navigation_alive, navigation);
  gpointer old = g_atomic_pointer_exchange(&self->navigation, navigation);
  if (old != nullptr) g_object_unref(old);
}

void nox_pen_tracker_set_property(GObject *object, guint id, const GValue *value,
                                  GParamSpec *pspec) {
  if (id != kNavigationObject) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    return;
  }
  set_navigation(nox_pen_tracker_cast(object), g_value_dup_object(value));
}

void nox_pen_tracker_get_property(GObject *object, guint id, GValue *value, GParamSpec *pspec) {
  if (id != kNavigationObject) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    return;
  }
  g_value_take_object(value, g_weak_ref_get(&nox_pen_tracker_cast(object)->navigation_alive));
}

gboolean nox_pen_tracker_sink_event(GstPad *pad, GstObject *parent, GstEvent *event) {
  NoxPenTracker *self = nox_pen_tracker_cast(parent);
  if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
    GstCaps *caps = nullptr;
    gst_event_parse_caps(event, &caps);
    GST_DEBUG_OBJECT(self, "Got caps-event: %p", static_cast<void *>(caps));
    const gboolean ret = gst_video_info_from_caps(&self->info, caps);
    g_assert(ret);
  }
  return gst_pad_event_default(pad, parent, event);
}

// A shared buffer, as behind a tee, cannot be written to, and mapping it for writing would be
// refused or cost a copy. The picture is only read, so reading will do.
gboolean map_frame(GstVideoFrame *frame, const GstVideoInfo *info, GstBuffer *buffer) {
  if (gst_buffer_is_all_memory_writable(buffer) != FALSE) {
    constexpr auto kReadWrite = static_cast<GstMapFlags>(GST_MAP_READ | GST_MAP_WRITE);
    if (gst_video_frame_map(frame, info, buffer, kReadWrite) != FALSE) return TRUE;
  }
  return gst_video_frame_map(frame, info, buffer, GST_MAP_READ);
}

void push_event(NoxPenTracker *self, const Position &position) {
  GstStructure *structure = gst_structure_new(
      "NoxTrackingData", "x", G_TYPE_FLOAT, static_cast<gdouble>(position.x), "y", G_TYPE_FLOAT,
      static_cast<gdouble>(position.y), "pressed", G_TYPE_BOOLEAN, position.pressed, nullptr);
  gst_pad_push_event(self->srcpad, gst_event_new_custom(GST_EVENT_CUSTOM_DOWNSTREAM, structure));
}

void tell_navigation(NoxPenTracker *self, const Position &position) {
  auto *navigation = static_cast<NoxNavigation *>(g_weak_ref_get(&self->navigation_alive));
  if (navigation == nullptr) return;
  nox_navigation_new_position(navigation, position.x, position.y, position.pressed);
  g_object_unref(navigation);
}

void track(NoxPenTracker *self, const GstVideoFrame *mapped) {
  WholeFrame frame(*mapped, Touches::kSamples);
  Position position{};
  if (pen_tracker_process(self->tracker, &frame.get(), &frame.get(), &position.x, &position.y,
                          &position.pressed) == 0) {
    return;
  }
  GST_DEBUG_OBJECT(self, "Got: %dx%d, Pressed: %s",
                   static_cast<int>(position.x * static_cast<float>(frame.get().width)),
                   static_cast<int>(position.y * static_cast<float>(frame.get().height)),
                   position.pressed != 0 ? "Yes" : "No");
  push_event(self, position);
  tell_navigation(self, position);
}

GstFlowReturn nox_pen_tracker_chain(GstPad * /*pad*/, GstObject *parent, GstBuffer *buffer) {
  NoxPenTracker *self = nox_pen_tracker_cast(parent);
  GstVideoFrame mapped;
  const gboolean ret = map_frame(&mapped, &self->info, buffer);
  g_assert(ret);
  track(self, &mapped);
  gst_video_frame_unmap(&mapped);
  return gst_pad_push(self->srcpad, buffer);
}

void nox_pen_tracker_dispose(GObject *object) {
  // Cleared, since GObject may dispose an object more than once. The navigation object is
  // deliberately not released.
  g_clear_pointer(&nox_pen_tracker_cast(object)->tracker, pen_tracker_free);
  G_OBJECT_CLASS(nox_pen_tracker_parent_class)->dispose(object);
}

void nox_pen_tracker_finalize(GObject *object) {
  g_weak_ref_clear(&nox_pen_tracker_cast(object)->navigation_alive);
  G_OBJECT_CLASS(nox_pen_tracker_parent_class)->finalize(object);
}

}  // namespace

static void nox_pen_tracker_class_init(NoxPenTrackerClass *klass) {
  auto *object_class = G_OBJECT_CLASS(klass);
  auto *element_class = GST_ELEMENT_CLASS(klass);

  object_class->dispose = GST_DEBUG_FUNCPTR(nox_pen_tracker_dispose);
  object_class->finalize = GST_DEBUG_FUNCPTR(nox_pen_tracker_finalize);
  object_class->set_property = GST_DEBUG_FUNCPTR(nox_pen_tracker_set_property);
  object_class->get_property = GST_DEBUG_FUNCPTR(nox_pen_tracker_get_property);
  gst_element_class_set_static_metadata(element_class, "Video pen tracker", "Filter/Tracker/Video",
                                        "Part of the nox video plugin",
                                        "The noxvisuals developers");
  gst_element_class_add_static_pad_template(element_class, &src_template);
  gst_element_class_add_static_pad_template(element_class, &sink_template);
  g_object_class_install_property(
      object_class, kNavigationObject,
      g_param_spec_object("navigation-object", "Navigation Object",
                          "An object implementing the NoxNavigation Interface", NOX_TYPE_NAVIGATION,
                          G_PARAM_READWRITE));
  if (nox_pen_tracker_debug == nullptr) {
    GST_DEBUG_CATEGORY_INIT(nox_pen_tracker_debug, "noxvideotracker", 0, "noxvideotracker");
  }
}

static void nox_pen_tracker_init(NoxPenTracker *self) {
  g_weak_ref_init(&self->navigation_alive, nullptr);
  self->srcpad = new_proxy_pad(&src_template, "src");
  gst_element_add_pad(GST_ELEMENT(self), self->srcpad);
  self->sinkpad = new_proxy_pad(&sink_template, "sink");
  gst_pad_set_event_function(self->sinkpad, GST_DEBUG_FUNCPTR(nox_pen_tracker_sink_event));
  gst_pad_set_chain_function(self->sinkpad, GST_DEBUG_FUNCPTR(nox_pen_tracker_chain));
  gst_element_add_pad(GST_ELEMENT(self), self->sinkpad);
  self->tracker = pen_tracker_new();
}
