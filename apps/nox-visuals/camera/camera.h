// What a camera can do and how it is set, behind a seam that tests replace.
#ifndef NOX_VISUALS_CAMERA_CAMERA_H_
#define NOX_VISUALS_CAMERA_CAMERA_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nox::app {

// A setting of the camera's driver. Ids, types and flags are V4L2's (linux/videodev2.h).
struct CameraControl {
  std::uint32_t id = 0;
  std::string name;  // as v4l2-ctl says it: lower case, words joined by _
  std::uint32_t type = 0;
  std::uint32_t flags = 0;
  std::int64_t minimum = 0, maximum = 0, step = 1, default_value = 0;
  std::int64_t value = 0;
  std::vector<std::int64_t> choices;  // of a menu: the values that it has
};

// A size and rate at which the camera delivers.
struct CameraMode {
  std::string format;  // its four characters, such as "MJPG"
  std::uint32_t width = 0, height = 0;
  double rate = 0;  // frames a second
  bool operator==(const CameraMode &) const = default;
};

class Camera {
 public:
  Camera() = default;
  virtual ~Camera() = default;
  Camera(const Camera &) = delete;
  Camera &operator=(const Camera &) = delete;

  // Its driver, model and where it is plugged in: the same whatever its path is today. Empty
  // when it is gone.
  virtual std::string identity() const = 0;

  virtual std::vector<CameraMode> modes() const = 0;

  // In which it is or was last; none when it does not tell.
  virtual std::optional<CameraMode> mode() const = 0;

  // All that can be read, with the values of now.
  virtual std::vector<CameraControl> controls() const = 0;

  // Whether the driver took it, which is not to say that it did as told.
  virtual bool set(std::uint32_t control, std::int64_t value) = 0;
  virtual bool set_mode(const CameraMode &mode) = 0;
};

// The control among them, or null.
const CameraControl *find_control(const std::vector<CameraControl> &controls, std::uint32_t id);
const CameraControl *find_control(const std::vector<CameraControl> &controls,
                                  const std::string &name);

// Whether a program may set it at all. Inactive ones become active with another setting.
bool is_writable(const CameraControl &control);
bool is_active(const CameraControl &control);

}  // namespace nox::app

#endif  // NOX_VISUALS_CAMERA_CAMERA_H_
