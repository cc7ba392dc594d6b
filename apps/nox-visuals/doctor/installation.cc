#include "nox-visuals/doctor/installation.h"

#include <gst/gst.h>

#include "nox-visuals/config.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/stream/missing_plugin.h"

namespace nox::app {
namespace {

// What each use needs. Files and addresses may need more, which only they can tell.
struct Need {
  const char *subject;
  const char *use;
  std::vector<const char *> elements;
};

const std::vector<Need> &needs() {
  static const std::vector<Need> all = {
      {"playback", "any source", {"uridecodebin", "videoconvert", "queue", "fakesink"}},
      {"cameras", "/dev/video and MJPEG cameras", {"v4l2src", "jpegdec"}},
      {"webm", "VP8 and VP9 files", {"matroskademux", "vp8dec", "vp9dec"}},
      {"h264", "H.264 files and addresses", {"qtdemux", "h264parse", "avdec_h264"}},
      {"rtsp", "rtsp:// addresses", {"rtspsrc", "rtph264depay"}},
      {"preview", "a window with the picture", {"autovideosink"}},
  };
  return all;
}

bool has_element(const char *name) {
  const GstPointer<GstElementFactory> factory(gst_element_factory_find(name));
  return factory != nullptr;
}

Finding look_at_need(const Need &need) {
  std::string missing;
  std::string packages;
  for (const char *element : need.elements) {
    if (has_element(element)) continue;
    missing += std::string(missing.empty() ? "" : ", ") + element;
    const std::string package = debian_package(std::string("element-") + element);
    if (!package.empty() && packages.find(package) == std::string::npos) packages += " " + package;
  }
  if (missing.empty()) return {Verdict::kOk, need.subject, need.use, ""};
  const std::string advice = packages.empty() ? "" : "apt install" + packages;
  return {Verdict::kWarn, need.subject, std::string(need.use) + ": missing " + missing, advice};
}

Finding look_at_module() {
  const GstPointer<GstElementFactory> factory(gst_element_factory_find("noxpentracker"));
  if (factory == nullptr) {
    return {Verdict::kFail, "module", "libgstnoxvisuals_sse.so is not found",
            "GST_DEBUG=GST_PLUGIN_LOADING:4 gst-inspect-1.0 noxvisuals_sse"};
  }
  const GstPointer<GstPlugin> plugin(
      gst_plugin_feature_get_plugin(GST_PLUGIN_FEATURE(factory.get())));
  if (plugin == nullptr) return {Verdict::kWarn, "module", "is not of a file", ""};
  const char *file = gst_plugin_get_filename(plugin.get());
  const std::string place = file == nullptr ? "in no file" : file;
  const std::string version = gst_plugin_get_version(plugin.get());
  if (version != NOX_VERSION) {
    return {Verdict::kWarn, "module", version + ", but the program is " NOX_VERSION ": " + place,
            "install both from one build"};
  }
  return {Verdict::kOk, "module", version + " " + place, ""};
}

Finding look_at_build() {
  const std::string without = NOX_BUILT_WITHOUT;
  if (without.empty()) return {Verdict::kOk, "program", NOX_VERSION, ""};
  return {Verdict::kWarn, "program",
          NOX_VERSION ", " + without.substr(without.find_first_not_of('\n')),
          "install their -dev packages and build again"};
}

}  // namespace

Findings look_at_installation() {
  Findings findings;
  findings.push_back({Verdict::kOk, "gstreamer", take_string(gst_version_string()), ""});
  findings.push_back(look_at_build());
  findings.push_back(look_at_module());
  for (const Need &need : needs()) findings.push_back(look_at_need(need));
  return findings;
}

}  // namespace nox::app
