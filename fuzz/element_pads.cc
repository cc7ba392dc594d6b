#include "element_pads.h"

#include "fuzz_input.h"

// What GST_PLUGIN_DEFINE makes for programs that are linked with the module.
extern "C" void gst_plugin_noxvisuals_sse_register(void);

namespace nox::fuzz {

namespace {

ElementPads *owner(GstPad *pad) {
  return static_cast<ElementPads *>(gst_pad_get_element_private(pad));
}

// A pad that takes any caps, as one without a template does not.
GstPad *new_pad(const char *name, GstPadDirection direction, ElementPads *owner) {
  GstCaps *any = gst_caps_new_any();
  GstPadTemplate *pad_template = gst_pad_template_new(name, direction, GST_PAD_ALWAYS, any);
  GstPad *pad = gst_pad_new_from_template(pad_template, name);
  gst_object_unref(pad_template);
  gst_caps_unref(any);
  gst_object_ref_sink(pad);
  gst_pad_set_element_private(pad, owner);
  return pad;
}

void link_pads(GstPad *source, GstPad *sink) {
  require(gst_pad_link(source, sink) == GST_PAD_LINK_OK, "two pads are linked");
}

}  // namespace

void start_gstreamer() {
  // No other plugin is looked for, and nothing is written.
  for (const char *name : {"GST_PLUGIN_PATH", "GST_PLUGIN_PATH_1_0", "GST_PLUGIN_SYSTEM_PATH",
                           "GST_PLUGIN_SYSTEM_PATH_1_0"}) {
    g_setenv(name, "", TRUE);
  }
  g_setenv("GST_REGISTRY", "/dev/null", TRUE);
  g_setenv("GST_REGISTRY_UPDATE", "no", TRUE);
  g_setenv("G_DEBUG", "fatal-criticals", TRUE);
  gst_registry_fork_set_enabled(FALSE);
  gst_init(nullptr, nullptr);
  gst_plugin_noxvisuals_sse_register();
}

ElementPads::ElementPads(const char *factory)
    : element_(gst_element_factory_make(factory, nullptr)),
      source_(new_pad("source", GST_PAD_SRC, this)),
      sink_(new_pad("sink", GST_PAD_SINK, this)) {
  require(element_ != nullptr, "the element is made");
  gst_object_ref_sink(element_);
  gst_pad_set_chain_function(sink_, chain);
  gst_pad_set_event_function(sink_, take_event);
  GstPad *in = gst_element_get_static_pad(element_, "sink");
  GstPad *out = gst_element_get_static_pad(element_, "src");
  link_pads(source_, in);
  link_pads(out, sink_);
  gst_object_unref(in);
  gst_object_unref(out);
  for (GstPad *pad : {sink_, source_}) gst_pad_set_active(pad, TRUE);
  gst_element_set_state(element_, GST_STATE_PLAYING);
}

ElementPads::~ElementPads() {
  gst_element_set_state(element_, GST_STATE_NULL);
  for (GstPad *pad : {source_, sink_}) {
    gst_pad_set_active(pad, FALSE);
    gst_object_unref(pad);
  }
  gst_object_unref(element_);
}

void ElementPads::begin_stream(const GstVideoInfo &info) {
  send(gst_event_new_stream_start("fuzz"));
  send_caps(info);
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  send(gst_event_new_segment(&segment));
}

void ElementPads::send_caps(const GstVideoInfo &info) {
  GstCaps *caps = gst_video_info_to_caps(&info);
  send(gst_event_new_caps(caps));
  gst_caps_unref(caps);
}

void ElementPads::query(GstQuery *query) const {
  gst_pad_peer_query(source_, query);
  gst_query_unref(query);
}

void ElementPads::restart(GstState state) const {
  for (const GstState next : {state, GST_STATE_PLAYING}) {
    require(gst_element_set_state(element_, next) == GST_STATE_CHANGE_SUCCESS, "a state");
  }
}

GstFlowReturn ElementPads::chain(GstPad *pad, GstObject * /*parent*/, GstBuffer *buffer) {
  owner(pad)->buffers_.emplace_back(buffer);
  return GST_FLOW_OK;
}

gboolean ElementPads::take_event(GstPad *pad, GstObject * /*parent*/, GstEvent *event) {
  const GstStructure *structure = gst_event_get_structure(event);
  if (GST_EVENT_TYPE(event) == GST_EVENT_CUSTOM_DOWNSTREAM &&
      gst_structure_has_name(structure, "NoxTrackingData")) {
    gfloat x = 0, y = 0;
    gboolean pressed = FALSE;
    require(gst_structure_get(structure, "x", G_TYPE_FLOAT, &x, "y", G_TYPE_FLOAT, &y, "pressed",
                              G_TYPE_BOOLEAN, &pressed, nullptr) != FALSE,
            "the fields of the event");
    owner(pad)->pens_.push_back({x, y, pressed != FALSE});
  }
  gst_event_unref(event);
  return TRUE;
}

}  // namespace nox::fuzz
