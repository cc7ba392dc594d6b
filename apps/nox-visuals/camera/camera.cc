#include "nox-visuals/camera/camera.h"

#include <linux/videodev2.h>

#include <algorithm>

namespace nox::app {
namespace {

template <typename Is>
const CameraControl *find_where(const std::vector<CameraControl> &controls, Is is) {
  const auto found = std::find_if(controls.begin(), controls.end(), is);
  return found == controls.end() ? nullptr : &*found;
}

}  // namespace

const CameraControl *find_control(const std::vector<CameraControl> &controls, std::uint32_t id) {
  return find_where(controls, [id](const CameraControl &it) { return it.id == id; });
}

const CameraControl *find_control(const std::vector<CameraControl> &controls,
                                  const std::string &name) {
  return find_where(controls, [&](const CameraControl &it) { return it.name == name; });
}

bool is_writable(const CameraControl &control) {
  return (control.flags & (V4L2_CTRL_FLAG_READ_ONLY | V4L2_CTRL_FLAG_GRABBED)) == 0;
}

bool is_active(const CameraControl &control) {
  return (control.flags & V4L2_CTRL_FLAG_INACTIVE) == 0;
}

}  // namespace nox::app
