// Owners of GStreamer's and GLib's objects.
#ifndef NOX_VISUALS_GST_POINTERS_H_
#define NOX_VISUALS_GST_POINTERS_H_

#include <gst/gst.h>

#include <memory>
#include <string>

namespace nox::app {

struct Unref {
  void operator()(gpointer object) const { gst_object_unref(object); }
  void operator()(GstMessage *message) const { gst_message_unref(message); }
  void operator()(GstCaps *caps) const { gst_caps_unref(caps); }
};
template <typename T>
using GstPointer = std::unique_ptr<T, Unref>;

// The text that `text` holds, which is freed; "" for none.
inline std::string take_string(gchar *text) {
  std::string out = text == nullptr ? "" : text;
  g_free(text);
  return out;
}

// The message of an error, which is freed.
inline std::string take_error(GError *error) {
  std::string out = error == nullptr ? "unknown" : error->message;
  g_clear_error(&error);
  return out;
}

}  // namespace nox::app

#endif  // NOX_VISUALS_GST_POINTERS_H_
