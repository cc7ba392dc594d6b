// nox-visuals devices: lists the cameras that GStreamer sees.
#include <gst/gst.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/json_object.h"
#include "nox-visuals/options/command.h"

namespace nox::app {
namespace {

struct Device {
  std::string name;
  std::string source;              // the word for SOURCE; empty when there is none
  std::vector<std::string> modes;  // as in "video/x-raw 1280x720 30/1"
};

// The value of a field as text; "" when there is none.
std::string field(const GstStructure *structure, const char *name) {
  const GValue *value = structure == nullptr ? nullptr : gst_structure_get_value(structure, name);
  if (value == nullptr) return "";
  const char *text = G_VALUE_HOLDS_STRING(value) ? g_value_get_string(value) : nullptr;
  if (G_VALUE_HOLDS_STRING(value)) return text == nullptr ? "" : text;
  return take_string(gst_value_serialize(value));
}

std::string mode(const GstStructure *structure) {
  std::string text = gst_structure_get_name(structure);
  const std::string format = field(structure, "format");
  if (!format.empty()) text += " " + format;
  return text + " " + field(structure, "width") + "x" + field(structure, "height") + " " +
         field(structure, "framerate");
}

// Cameras of V4L2 tell their path, under a name that depends on who found them.
std::string source_word(GstDevice *device) {
  GstStructure *properties = gst_device_get_properties(device);
  std::string path = field(properties, "device.path");
  if (path.empty()) path = field(properties, "api.v4l2.path");
  if (properties != nullptr) gst_structure_free(properties);
  return path;
}

Device describe(GstDevice *device) {
  Device it;
  it.name = take_string(gst_device_get_display_name(device));
  it.source = source_word(device);
  const GstPointer<GstCaps> caps(gst_device_get_caps(device));
  const guint count = caps == nullptr ? 0 : gst_caps_get_size(caps.get());
  for (guint i = 0; i < count; ++i) it.modes.push_back(mode(gst_caps_get_structure(caps.get(), i)));
  return it;
}

std::vector<Device> find_devices() {
  const GstPointer<GstDeviceMonitor> monitor(gst_device_monitor_new());
  gst_device_monitor_add_filter(monitor.get(), "Video/Source", nullptr);
  GList *found = gst_device_monitor_get_devices(monitor.get());
  std::vector<Device> devices;
  for (GList *it = found; it != nullptr; it = it->next) {
    devices.push_back(describe(GST_DEVICE(it->data)));
  }
  g_list_free_full(found, gst_object_unref);
  return devices;
}

std::string to_json(const Device &device) {
  JsonObject json;
  json.text("type", "device");
  json.text("name", device.name);
  if (!device.source.empty()) json.text("source", device.source);
  std::string modes;
  for (const std::string &mode : device.modes) {
    modes += (modes.empty() ? "[" : ",") + json_string(mode);
  }
  json.raw("modes", modes.empty() ? "[]" : modes + "]");
  return json.str();
}

std::string to_text(const Device &device) {
  std::string text = (device.source.empty() ? "-" : device.source) + "  " + device.name;
  for (const std::string &mode : device.modes) text += "\n    " + mode;
  return text;
}

int list_devices(bool json) {
  const std::vector<Device> devices = find_devices();
  for (const Device &device : devices) {
    std::cout << (json ? to_json(device) : to_text(device)) << '\n';
  }
  if (devices.empty() && !json) std::cout << "no camera found\n";
  std::cout.flush();
  return kDone;
}

}  // namespace

void add_devices(CLI::App *program, Action *chosen) {
  Command command(program, "devices", "lists cameras");
  const auto json = std::make_shared<bool>(false);
  command.flag("--json", json.get(), "prints one JSON object a line");
  command.example("nox-visuals devices");
  command.when_chosen([chosen, json] { *chosen = [json] { return list_devices(*json); }; });
}

}  // namespace nox::app
