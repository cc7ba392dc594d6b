#include "nox-visuals/stream/pipeline.h"

#include "nox-visuals/errors.h"
#include "nox-visuals/stream/missing_plugin.h"
#include "nox-visuals/stream/video_guard.h"

namespace nox::app {
namespace {

// Few frames: enough that neither side waits for the other at every frame, and no memory to speak
// of.
constexpr const char *kHead =
    "queue name=arrivals silent=true max-size-buffers=4 max-size-bytes=0 max-size-time=0 ! "
    "videoconvert name=convert ! video/x-raw,format={ I420, A420 } ! ";

}  // namespace

GstPointer<GstElement> make_pipeline(const Source &source, const std::string &tail) {
  GError *error = nullptr;
  GstElement *parsed =
      gst_parse_launch_full((kHead + tail).c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error);
  if (parsed == nullptr) throw StreamError(parse_error(error));
  GstPointer<GstElement> pipeline(GST_ELEMENT(gst_object_ref_sink(parsed)));
  const GstPointer<GstElement> convert(gst_bin_get_by_name(GST_BIN(pipeline.get()), "convert"));
  guard_video(convert.get());
  GstElement *bin = make_source_bin(source);
  gst_bin_add(GST_BIN(pipeline.get()), bin);
  const GstPointer<GstElement> queue(gst_bin_get_by_name(GST_BIN(pipeline.get()), kArrivals));
  if (gst_element_link(bin, queue.get()) == FALSE) {
    throw StreamError("the source brings no raw video");
  }
  return pipeline;
}

}  // namespace nox::app
