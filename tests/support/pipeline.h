// Whole pipelines, from their description to their end.
#ifndef SUPPORT_PIPELINE_H_
#define SUPPORT_PIPELINE_H_

#include <gst/gst.h>

#include <string>

#include "support/harness.h"

namespace nox::test {

// Runs a pipeline to its end; returns the error's text, or "" when all went well.
inline std::string run_pipeline(const std::string &description) {
  GError *error = nullptr;
  const ObjectPtr<GstElement> pipeline(gst_parse_launch(description.c_str(), &error));
  if (error != nullptr) {
    std::string text = error->message;
    g_error_free(error);
    return text;
  }
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  const ObjectPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  GstMessage *message = gst_bus_timed_pop_filtered(
      bus.get(), 60 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  std::string text = message == nullptr ? "timed out" : "";
  if (message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    gst_message_parse_error(message, &error, nullptr);
    text = error->message;
    g_error_free(error);
  }
  if (message != nullptr) gst_message_unref(message);
  gst_element_set_state(pipeline.get(), GST_STATE_NULL);
  return text;
}

}  // namespace nox::test

#endif  // SUPPORT_PIPELINE_H_
