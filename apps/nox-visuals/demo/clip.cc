#include "nox-visuals/demo/clip.h"

#include "nox-visuals/errors.h"

namespace nox::app::demo {
namespace {

const std::string kEncoder = "vp8enc deadline=1 cpu-used=8 target-bitrate=3000000 ! webmmux";

}  // namespace

GstPointer<GstElement> parse_pipeline(const std::string &description) {
  GError *error = nullptr;
  GstElement *parsed =
      gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error);
  if (parsed == nullptr) throw StreamError(take_error(error));
  return GstPointer<GstElement>(GST_ELEMENT(gst_object_ref_sink(parsed)));
}

GstPointer<GstElement> parse_pipeline_behind(GstElement *bin, const std::string &description,
                                             const char *first) {
  auto pipeline = parse_pipeline(description);
  gst_bin_add(GST_BIN(pipeline.get()), bin);
  const GstPointer<GstElement> next(gst_bin_get_by_name(GST_BIN(pipeline.get()), first));
  if (gst_element_link(bin, next.get()) == FALSE) throw StreamError("the scene cannot be played");
  return pipeline;
}

void set_location(GstElement *pipeline, const char *element, const std::string &path) {
  const GstPointer<GstElement> it(gst_bin_get_by_name(GST_BIN(pipeline), element));
  g_object_set(it.get(), "location", path.c_str(), nullptr);
}

void run_to_end(GstElement *pipeline) {
  const GstPointer<GstBus> bus(gst_element_get_bus(pipeline));
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  const GstPointer<GstMessage> end(
      gst_bus_timed_pop_filtered(bus.get(), GST_CLOCK_TIME_NONE,
                                 static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
  gst_element_set_state(pipeline, GST_STATE_NULL);
  if (GST_MESSAGE_TYPE(end.get()) == GST_MESSAGE_EOS) return;
  GError *error = nullptr;
  gst_message_parse_error(end.get(), &error, nullptr);
  throw StreamError(take_error(error));
}

void write_clip(Scene scene, const std::string &path) {
  scene.live = false;
  const auto pipeline = parse_pipeline_behind(
      make_scene_bin(scene), "queue name=frames ! " + kEncoder + " ! filesink name=file", "frames");
  set_location(pipeline.get(), "file", path);
  run_to_end(pipeline.get());
}

}  // namespace nox::app::demo
