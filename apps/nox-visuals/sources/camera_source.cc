#include "nox-visuals/sources/camera_source.h"

#include "nox-visuals/camera/settings_guard.h"
#include "nox-visuals/camera/v4l2_camera.h"
#include "nox-visuals/console.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/sources/decoder_source.h"

namespace nox::app {
namespace {

GstPointer<GstCaps> caps_of(const CameraMode &mode) {
  int numerator = 0;
  int denominator = 1;
  gst_util_double_to_fraction(mode.rate, &numerator, &denominator);
  const char *raw = raw_format(mode.format);
  GstPointer<GstCaps> caps(gst_caps_new_simple(
      raw == nullptr ? "image/jpeg" : "video/x-raw", "width", G_TYPE_INT,
      static_cast<int>(mode.width), "height", G_TYPE_INT, static_cast<int>(mode.height),
      "framerate", GST_TYPE_FRACTION, numerator, denominator, nullptr));
  if (raw != nullptr) gst_caps_set_simple(caps.get(), "format", G_TYPE_STRING, raw, nullptr);
  return caps;
}

void set_camera(Camera *camera, const CameraSettings &settings) {
  if (settings.controls.empty()) return;
  if (settings.camera != camera->identity()) {
    say("the settings are of another camera: " + settings.camera);
  }
  for (const std::string &complaint :
       apply_for_good(camera, settings, undo_file_of(camera->identity()))) {
    say(complaint);
  }
}

}  // namespace

GstElement *make_camera_bin(const std::string &device, const CameraUse &use) {
  V4l2Camera camera(device);
  const std::optional<CameraMode> mode = pick_mode(camera.modes(), use.mode);
  set_camera(&camera, use.settings);
  const GstPointer<GstCaps> caps =
      mode ? caps_of(*mode) : GstPointer<GstCaps>(gst_caps_from_string("video/x-raw; image/jpeg"));
  GstElement *source = make_element("v4l2src");
  g_object_set(source, "device", device.c_str(), nullptr);
  return make_decoder_bin(source, caps.get());
}

}  // namespace nox::app
