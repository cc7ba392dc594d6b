#include "nox-visuals/stream/module.h"

#include <gst/gst.h>

#include <filesystem>

#include "nox-visuals/config.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

bool elements_known() {
  const GstPointer<GstElementFactory> factory(gst_element_factory_find("noxpentracker"));
  return factory != nullptr;
}

}  // namespace

void find_module() {
  if (elements_known()) return;
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return;
  for (const char *folder : {NOX_MODULE_FROM_BUILT_PROGRAM, NOX_MODULE_FROM_INSTALLED_PROGRAM}) {
    const auto module = std::filesystem::canonical(
        program.parent_path() / folder / "libgstnoxvisuals_sse.so", error);
    if (error) continue;
    GstPlugin *plugin = gst_plugin_load_file(module.c_str(), nullptr);
    if (plugin != nullptr) gst_object_unref(plugin);
    if (elements_known()) return;
  }
}

void demand_module() {
  if (elements_known()) return;
  throw StreamError(
      "GStreamer does not find the module noxvisuals_sse; is its folder named in GST_PLUGIN_PATH? "
      "nox-visuals doctor tells more");
}

}  // namespace nox::app
