#include "nox-visuals/stream/missing_plugin.h"

#include <gst/pbutils/pbutils.h>

#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

struct Package {
  std::string_view part;  // of the detail
  const char *name;
};

constexpr const char *kBase = "gstreamer1.0-plugins-base";
constexpr const char *kGood = "gstreamer1.0-plugins-good";
constexpr const char *kBad = "gstreamer1.0-plugins-bad";
constexpr const char *kUgly = "gstreamer1.0-plugins-ugly";
constexpr const char *kLibav = "gstreamer1.0-libav";

// The first that fits holds.
constexpr Package kPackages[] = {
    {"element-x264enc", kUgly},
    {"encoder-video/x-h264", kUgly},
    {"element-gtk", "gstreamer1.0-gtk3"},
    {"element-glimagesink", "gstreamer1.0-gl"},
    {"element-waylandsink", kBad},
    {"element-ximagesink", "gstreamer1.0-x"},
    {"element-xvimagesink", "gstreamer1.0-x"},
    {"element-v4l2src", kGood},
    {"element-vp8", kGood},
    {"element-vp9", kGood},
    {"element-webmmux", kGood},
    {"element-matroskamux", kGood},
    {"element-jpegdec", kGood},
    {"element-pngdec", kGood},
    {"element-avdec", kLibav},
    {"element-openh264", kBad},
    {"element-video", kBase},
    {"element-app", kBase},
    {"urisource-rtsp", kGood},
    {"urisource-http", kGood},
    {"urisource-v4l2", kGood},
    {"urisource-srt", kBad},
    {"urisource-rtmp", kBad},
    {"urisource-", kBad},
    {"coder-video/x-vp", kGood},
    {"decoder-image/jpeg", kGood},
    {"decoder-image/png", kGood},
    {"decoder-video/x-matroska", kGood},
    {"decoder-video/webm", kGood},
    {"decoder-video/quicktime", kGood},
    {"decoder-video/x-msvideo", kGood},
    {"decoder-application/x-rtp", kGood},
    {"decoder-video/x-flv", kGood},
    {"decoder-application/ogg", kBase},
    {"decoder-video/x-theora", kBase},
    {"decoder-video/x-av1", kBad},
    {"decoder-video/mpegts", kBad},
    {"decoder-application/x-hls", kBad},
    {"decoder-application/dash", kBad},
    {"decoder-", kLibav},
};

}  // namespace

std::string debian_package(std::string_view detail) {
  for (const Package &package : kPackages) {
    if (detail.find(package.part) != std::string_view::npos) return package.name;
  }
  return "";
}

std::string missing_plugin(GstMessage *message) {
  if (gst_is_missing_plugin_message(message) == FALSE) return "";
  const std::string what = take_string(gst_missing_plugin_message_get_description(message));
  const std::string detail = take_string(gst_missing_plugin_message_get_installer_detail(message));
  // gstreamer|1.0|program|description|what it is for
  const std::string package = debian_package(detail.substr(detail.rfind('|') + 1));
  return package.empty() ? what : what + "; install " + package;
}

std::string parse_error(GError *error) {
  const bool missing =
      g_error_matches(error, GST_PARSE_ERROR, GST_PARSE_ERROR_NO_SUCH_ELEMENT) != FALSE;
  const std::string why = take_error(error);
  if (!missing) return why;
  // no element "vp8enc"
  const auto begin = why.find('"') + 1;
  const std::string element = why.substr(begin, why.rfind('"') - begin);
  const std::string package = debian_package("element-" + element);
  return "GStreamer lacks the element " + element + (package.empty() ? "" : "; install " + package);
}

}  // namespace nox::app
