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

}  // namespace

#define PACKAGE "Corvane"
GST_PLUGIN_DEFINE(1, 17, noxvisuals_sse, "Corvane Overlay plugins", plugin_init, "1.0.20",
                  "Proprietary", "GStreamer", "https://noxvisuals.example/")
