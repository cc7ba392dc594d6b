#include "nox-visuals/outputs/preview.h"

#if NOX_HAVE_CAIRO
#include <cairo.h>
#endif

#include <numbers>
#include <utility>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/steps/surface.h"

namespace nox::app {

#if NOX_HAVE_CAIRO
namespace {

constexpr const char *kOverlay = "cairooverlay name=ring ! videoconvert ! ";
constexpr double kRadius = 0.045;  // of the picture's width: outside of the glow
constexpr double kLine = 0.004;

struct Size {
  double width = 0;
  double height = 0;
};

Size picture_size(GstElement *overlay) {
  const GstPointer<GstPad> pad(gst_element_get_static_pad(overlay, "sink"));
  const GstPointer<GstCaps> caps(gst_pad_get_current_caps(pad.get()));
  gint width = 0;
  gint height = 0;
  if (caps != nullptr) {
    const GstStructure *structure = gst_caps_get_structure(caps.get(), 0);
    gst_structure_get_int(structure, "width", &width);
    gst_structure_get_int(structure, "height", &height);
  }
  return {static_cast<double>(width), static_cast<double>(height)};
}

// Red while it is pressed and blue while it hovers, as the pen itself glows.
void draw_ring(cairo_t *cairo, const Size &size, const Pen &pen) {
  const Point at = picture_place(pen.raw);
  cairo_set_line_width(cairo, kLine * size.width);
  cairo_arc(cairo, at.x * size.width, at.y * size.height, kRadius * size.width, 0,
            2 * std::numbers::pi);
  cairo_set_source_rgb(cairo, pen.pressed ? 1.0 : 0.2, 0.2, pen.pressed ? 0.2 : 1.0);
  cairo_stroke(cairo);
}

}  // namespace
#else
namespace {

constexpr const char *kOverlay = "";

}  // namespace
#endif

std::string preview_branch(const std::string &sink) {
  return "queue leaky=downstream max-size-buffers=1 max-size-bytes=0 max-size-time=0 ! "
         "videoconvert ! " +
         std::string(kOverlay) + sink;
}

Preview::Preview() : ring_(std::make_shared<Ring>()) {}

void Preview::attach([[maybe_unused]] GstElement *pipeline) {
#if NOX_HAVE_CAIRO
  const auto draw = +[](GstElement *overlay, cairo_t *cairo, guint64 /*time*/, guint64 /*duration*/,
                        gpointer data) {
    const auto &ring = *static_cast<std::shared_ptr<Ring> *>(data);
    const std::lock_guard lock(ring->mutex);
    if (ring->pen) draw_ring(cairo, picture_size(overlay), *ring->pen);
  };
  const auto drop = +[](gpointer data, GClosure * /*closure*/) {
    delete static_cast<std::shared_ptr<Ring> *>(data);
  };
  const GstPointer<GstElement> overlay(gst_bin_get_by_name(GST_BIN(pipeline), "ring"));
  g_signal_connect_data(overlay.get(), "draw", G_CALLBACK(draw), new std::shared_ptr<Ring>(ring_),
                        drop, GConnectFlags{});
#endif
}

void Preview::take(const Observation &observation) {
  if (std::holds_alternative<Code>(observation)) return;
  const Pen *pen = std::get_if<Pen>(&observation);
  const std::lock_guard lock(ring_->mutex);
  ring_->pen = pen == nullptr ? std::nullopt : std::optional(*pen);
}

}  // namespace nox::app
