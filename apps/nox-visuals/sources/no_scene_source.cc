// In place of scene_source.cc where the scenes are not built.
#include "nox-visuals/errors.h"
#include "nox-visuals/sources/scene_source.h"

namespace nox::app {

GstElement *make_scene_bin(const Scene &scene) {
  throw StreamError("test:" + scene.name +
                    ": this program was built without the scenes (libqrencode and libpng)");
}

}  // namespace nox::app
