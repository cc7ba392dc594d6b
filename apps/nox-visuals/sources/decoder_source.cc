#include "nox-visuals/sources/decoder_source.h"

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

bool has_prefix(const GstCaps *caps, const char *prefix) {
  return gst_caps_get_size(caps) > 0 &&
         g_str_has_prefix(gst_structure_get_name(gst_caps_get_structure(caps, 0)), prefix) != FALSE;
}

// What is not seen is not decoded, and needs no decoder.
gboolean wants_decoding(GstElement * /*decoder*/, GstPad * /*pad*/, GstCaps *caps,
                        gpointer /*data*/) {
  return !has_prefix(caps, "audio/") && !has_prefix(caps, "text/");
}

// The decoder's pads come while it runs: the first with video is the bin's.
void link_video(GstElement * /*decoder*/, GstPad *pad, gpointer ghost) {
  const GstPointer<GstPad> target(gst_ghost_pad_get_target(GST_GHOST_PAD(ghost)));
  if (target != nullptr) return;
  const GstPointer<GstCaps> caps(gst_pad_query_caps(pad, nullptr));
  if (has_prefix(caps.get(), "video/x-raw")) gst_ghost_pad_set_target(GST_GHOST_PAD(ghost), pad);
}

void demand_video(GstElement *decoder, gpointer ghost) {
  const GstPointer<GstPad> target(gst_ghost_pad_get_target(GST_GHOST_PAD(ghost)));
  if (target == nullptr) {
    GST_ELEMENT_ERROR(decoder, STREAM, WRONG_TYPE, ("There is no video in it."), (nullptr));
  }
}

// A bin around `decoder`, with the pad "src" that its video will leave by.
GstElement *make_bin_around(GstElement *decoder) {
  GstElement *bin = gst_bin_new(nullptr);
  gst_bin_add(GST_BIN(bin), decoder);
  GstPad *ghost = gst_ghost_pad_new_no_target("src", GST_PAD_SRC);
  gst_element_add_pad(bin, ghost);
  g_signal_connect(decoder, "autoplug-continue", G_CALLBACK(wants_decoding), nullptr);
  g_signal_connect(decoder, "pad-added", G_CALLBACK(link_video), ghost);
  g_signal_connect(decoder, "no-more-pads", G_CALLBACK(demand_video), ghost);
  return bin;
}

}  // namespace

GstElement *make_element(const char *factory) {
  GstElement *element = gst_element_factory_make(factory, nullptr);
  if (element == nullptr) {
    throw StreamError(std::string("GStreamer lacks the element ") + factory +
                      "; install gstreamer1.0-plugins-base and gstreamer1.0-plugins-good");
  }
  return element;
}

GstElement *make_address_bin(const std::string &uri) {
  GstElement *decoder = make_element("uridecodebin");
  g_object_set(decoder, "uri", uri.c_str(), nullptr);
  return make_bin_around(decoder);
}

GstElement *make_file_bin(const std::string &path) {
  GError *error = nullptr;
  const std::string uri = take_string(gst_filename_to_uri(path.c_str(), &error));
  if (error != nullptr) throw StreamError(path + ": " + take_error(error));
  return make_address_bin(uri);
}

GstElement *make_decoder_bin(GstElement *source, GstCaps *filter) {
  GstElement *decoder = make_element("decodebin");
  GstElement *bin = make_bin_around(decoder);
  gst_bin_add(GST_BIN(bin), source);
  gst_element_link_filtered(source, decoder, filter);
  return bin;
}

}  // namespace nox::app
