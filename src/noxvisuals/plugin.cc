// The module's descriptor and its elements.
#include <gst/gst.h>

#include "noxvisuals/noxpentracker.h"
#include "noxvisuals/noxqrdec.h"
#include "noxvisuals/noxvectorizer.h"

namespace {

struct Element {
  const char *name;
  GType (*get_type)();
};

// In the order of their registration.
constexpr Element kElements[] = {
    {"noxpentracker", nox_pen_tracker_get_type},
    {"noxvectorizer", nox_vectorizer_get_type},
    {"noxqrdec", nox_qr_dec_get_type},
};

gboolean plugin_init(GstPlugin *plugin) {
  gboolean all = TRUE;
  // Every element is tried, also behind one that fails: the others are still of use.
  for (const Element &element : kElements) {
    all &= gst_element_register(plugin, element.name, GST_RANK_PRIMARY, element.get_type());
  }
  return all;
}

const GstPluginDesc descriptor = {
    .major_version = 1,
    .minor_version = 17,
    .name = "noxvisuals_sse",
    .description = "Corvane Overlay plugins",
    .plugin_init = plugin_init,
    .version = "1.0.20",
    .license = "Proprietary",
    .source = "Corvane",
    .package = "GStreamer",
    .origin = "https://noxvisuals.example/",
    .release_datetime = nullptr,
    ._gst_reserved = {},
};

}  // namespace

// Written out, since GStreamer's macro for the two has the second one return nothing.
extern "C" {

GST_PLUGIN_EXPORT const GstPluginDesc *gst_plugin_noxvisuals_sse_get_desc();
GST_PLUGIN_EXPORT gboolean gst_plugin_noxvisuals_sse_register();

// For GStreamer, which loads the module.
const GstPluginDesc *gst_plugin_noxvisuals_sse_get_desc() {
  return &descriptor;
}

// For applications that link the module, or load it themselves: whether all went well.
gboolean gst_plugin_noxvisuals_sse_register() {
  const GstPluginDesc &d = descriptor;
  return gst_plugin_register_static(d.major_version, d.minor_version, d.name, d.description,
                                    d.plugin_init, d.version, d.license, d.source, d.package,
                                    d.origin);
}

}  // extern "C"
