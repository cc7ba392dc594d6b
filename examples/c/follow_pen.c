/* Follows the pen of light in a video, in the two ways that an application can: by a probe that
 * sees the events which noxpentracker sends down the pipeline, and by an object that implements
 * NoxNavigation.
 *
 * usage: follow_pen SOURCE
 * SOURCE is the piece of a pipeline that ends in raw video, such as "v4l2src ! videoconvert" or
 * "filesrc location=pen.webm ! decodebin ! videoconvert". Ends with the video, or at Ctrl-C.
 *
 * cc follow_pen.c $(pkg-config --cflags --libs gstreamer-1.0 noxnavigation) -o follow_pen
 */
#include <gst/gst.h>
#include <navigation/nox_navigation.h>

/* An object that is told every position. It is called on the thread that carries the video: a real
 * application would hand over to its own thread here, for example with g_idle_add(). */

struct _Cursor {
  GObject parent;
  guint positions;
};

#define CURSOR_TYPE (cursor_get_type())
G_DECLARE_FINAL_TYPE(Cursor, cursor, EXAMPLE, CURSOR, GObject)

static void cursor_new_position(NoxNavigation *self, gfloat x, gfloat y, gboolean pressed) {
  EXAMPLE_CURSOR(self)->positions++;
  g_print("navigation: %.3f %.3f %s\n", x, y, pressed ? "pressed" : "hovering");
}

static void cursor_navigation_init(NoxNavigationInterface *iface) {
  iface->new_position = cursor_new_position;
}

G_DEFINE_TYPE_WITH_CODE(Cursor, cursor, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(NOX_TYPE_NAVIGATION, cursor_navigation_init))

static void cursor_class_init(CursorClass *klass) {
  (void)klass;
}
static void cursor_init(Cursor *self) {
  self->positions = 0;
}

/* The events, in the pipeline: each comes just before the buffer that it is about. */
static GstPadProbeReturn see_event(GstPad *pad, GstPadProbeInfo *info, gpointer data) {
  const GstStructure *structure = gst_event_get_structure(GST_PAD_PROBE_INFO_EVENT(info));
  guint *events = data;
  gfloat x, y;
  gboolean pressed;
  (void)pad;
  if (structure == NULL || !gst_structure_has_name(structure, "NoxTrackingData"))
    return GST_PAD_PROBE_OK;
  if (gst_structure_get(structure, "x", G_TYPE_FLOAT, &x, "y", G_TYPE_FLOAT, &y, "pressed",
                        G_TYPE_BOOLEAN, &pressed, NULL)) {
    (*events)++;
    g_print("event:      %.3f %.3f %s\n", x, y, pressed ? "pressed" : "hovering");
  }
  return GST_PAD_PROBE_OK;
}

static GstElement *make_pipeline(const gchar *source) {
  GError *error = NULL;
  gchar *description = g_strdup_printf("%s ! noxpentracker name=tracker ! fakesink", source);
  GstElement *pipeline = gst_parse_launch(description, &error);
  g_free(description);
  if (error != NULL) {
    g_printerr("follow_pen: %s\n", error->message);
    g_clear_error(&error);
    gst_clear_object(&pipeline);
  }
  return pipeline;
}

/* Plays to the end; FALSE after an error. */
static gboolean play(GstElement *pipeline) {
  GstBus *bus = gst_element_get_bus(pipeline);
  GstMessage *message;
  gboolean ended;
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  message =
      gst_bus_timed_pop_filtered(bus, GST_CLOCK_TIME_NONE, GST_MESSAGE_EOS | GST_MESSAGE_ERROR);
  ended = GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
  gst_message_unref(message);
  gst_object_unref(bus);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  return ended;
}

int main(int argc, char **argv) {
  GstElement *pipeline, *tracker;
  GstPad *pad;
  Cursor *cursor;
  guint events = 0;
  gboolean ended;

  gst_init(&argc, &argv);
  if (argc != 2) {
    g_printerr("usage: follow_pen SOURCE\n");
    return 1;
  }
  pipeline = make_pipeline(argv[1]);
  if (pipeline == NULL) return 1;

  cursor = g_object_new(CURSOR_TYPE, NULL);
  tracker = gst_bin_get_by_name(GST_BIN(pipeline), "tracker");
  g_object_set(tracker, "navigation-object", cursor, NULL);
  pad = gst_element_get_static_pad(tracker, "src");
  gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, see_event, &events, NULL);
  ended = play(pipeline);

  /* The tracker would keep its reference beyond its own end. */
  g_object_set(tracker, "navigation-object", NULL, NULL);
  g_print("%u events, %u positions told\n", events, cursor->positions);
  gst_object_unref(pad);
  gst_object_unref(tracker);
  gst_object_unref(pipeline);
  g_object_unref(cursor);
  return ended ? 0 : 1;
}
