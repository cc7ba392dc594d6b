/**
 * SECTION:element-noxqrdec
 * @title: noxqrdec
 *
 * Looks for QR codes in every I420 frame and writes each payload to the debug log, in category
 * noxqrdec at level INFO. The picture passes through untouched, and the log line is the only
 * output.
 *
 * |[
 * GST_DEBUG=noxqrdec:INFO gst-launch-1.0 v4l2src ! videoconvert ! noxqrdec ! videoconvert !
 * autovideosink
 * ]|
 */
#include "noxvisuals/noxqrdec.h"

#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <utility>

#include "noxvisuals/whole_frame.h"
#include "qr/decoder.h"

struct NoxQRDec {
  GstVideoFilter parent;
  nox::qr::Decoder *decoder;  // owned
};

struct NoxQRDecClass {
  GstVideoFilterClass parent_class;
};

GST_DEBUG_CATEGORY_STATIC(nox_qr_dec_debug);
#define GST_CAT_DEFAULT nox_qr_dec_debug

G_DEFINE_TYPE(NoxQRDec, nox_qr_dec, GST_TYPE_VIDEO_FILTER)

namespace {

using nox::noxvisuals::Touches;
using nox::noxvisuals::WholeFrame;

constexpr const char *kCaps =
    "video/x-raw, format = (string) I420, width = (int) [ 1, max ], height = (int) [ 1, max ], "
    "framerate = (fraction) [ 0, max ]";

GstStaticPadTemplate sink_template =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(kCaps));
GstStaticPadTemplate src_template =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(kCaps));

NoxQRDec *nox_qr_dec_cast(gpointer object) {
  return G_TYPE_CHECK_INSTANCE_CAST(object, nox_qr_dec_get_type(), NoxQRDec);
}

nox::qr::Luma luma_of(const NoxVideoFrame &frame) {
  return {frame.planes[0], frame.strides[0], frame.width, frame.height};
}

GstFlowReturn nox_qr_dec_transform_frame_ip(GstVideoFilter *filter, GstVideoFrame *mapped) {
  NoxQRDec *self = nox_qr_dec_cast(filter);
  WholeFrame frame(*mapped, Touches::kSamples);
  // A frame for which there is no memory passes unread, and the stream goes on.
  if (!self->decoder->decode(luma_of(frame.get()))) return GST_FLOW_OK;
  // A code that is found but cannot be read is skipped without a word. The text ends at the
  // payload's first NUL.
  for (const nox::qr::Code &code : self->decoder->codes()) {
    if (code.error != nullptr) continue;
    GST_INFO_OBJECT(self, "Got QR Payload: %s", code.payload.c_str());
  }
  return GST_FLOW_OK;
}

void nox_qr_dec_dispose(GObject *object) {
  // Cleared, since GObject may dispose an object more than once.
  delete std::exchange(nox_qr_dec_cast(object)->decoder, nullptr);
  G_OBJECT_CLASS(nox_qr_dec_parent_class)->dispose(object);
}

}  // namespace

static void nox_qr_dec_class_init(NoxQRDecClass *klass) {
  auto *object_class = G_OBJECT_CLASS(klass);
  auto *element_class = GST_ELEMENT_CLASS(klass);
  auto *filter_class = GST_VIDEO_FILTER_CLASS(klass);

  object_class->dispose = GST_DEBUG_FUNCPTR(nox_qr_dec_dispose);
  filter_class->transform_frame_ip = GST_DEBUG_FUNCPTR(nox_qr_dec_transform_frame_ip);
  // "Trackerer" is deliberate: applications look the element up by this very string.
  gst_element_class_set_static_metadata(element_class, "QR Code Detector", "Filter/Trackerer/Video",
                                        "Part of the nox video plugin",
                                        "The noxvisuals developers");
  gst_element_class_add_static_pad_template(element_class, &sink_template);
  gst_element_class_add_static_pad_template(element_class, &src_template);
  if (nox_qr_dec_debug == nullptr) {
    GST_DEBUG_CATEGORY_INIT(nox_qr_dec_debug, "noxqrdec", 0, "noxqrdec");
  }
}

static void nox_qr_dec_init(NoxQRDec *self) {
  auto *transform = GST_BASE_TRANSFORM(self);
  // A gap keeps its flag, since the picture is never changed; and no frame is dropped for being
  // late.
  gst_base_transform_set_gap_aware(transform, TRUE);
  gst_base_transform_set_qos_enabled(transform, FALSE);
  self->decoder = new nox::qr::Decoder;
}
