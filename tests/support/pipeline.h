// Whole pipelines, from their description to their end.
#ifndef SUPPORT_PIPELINE_H_
#define SUPPORT_PIPELINE_H_

#include <gst/gst.h>

#include <string>

#include "support/harness.h"

namespace nox::test {

// Runs a pipeline to its end; returns the error's text, or "" when all went well.
inline std::string run_to_its_end(GstElement *pipeline) {
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  const ObjectPtr<GstBus> bus(gst_element_get_bus(pipeline));
  GstMessage *message = gst_bus_timed_pop_filtered(
      bus.get(), 60 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  std::string text = message == nullptr ? "timed out" : "";
  if (message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    GError *error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    text = error->message;
    g_error_free(error);
  }
  if (message != nullptr) gst_message_unref(message);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  return text;
}

// The same with a pipeline of this description; a description that cannot be read is an error too.
// `prepare` is given the pipeline before it starts, `tidy` when it has stopped.
template <typename Prepare, typename Tidy>
std::string run_pipeline(const std::string &description, Prepare prepare, Tidy tidy) {
  GError *error = nullptr;
  const ObjectPtr<GstElement> pipeline(gst_parse_launch(description.c_str(), &error));
  if (error != nullptr) {
    std::string text = error->message;
    g_error_free(error);
    return text;
  }
  prepare(pipeline.get());
  std::string text = run_to_its_end(pipeline.get());
  tidy(pipeline.get());
  return text;
}
template <typename Prepare>
std::string run_pipeline(const std::string &description, Prepare prepare) {
  return run_pipeline(description, prepare, [](GstElement *) {});
}
inline std::string run_pipeline(const std::string &description) {
  return run_pipeline(description, [](GstElement *) {});
}

}  // namespace nox::test

#endif  // SUPPORT_PIPELINE_H_
