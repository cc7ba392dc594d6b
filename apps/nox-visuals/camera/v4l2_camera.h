// A camera of this machine, asked through V4L2.
#ifndef NOX_VISUALS_CAMERA_V4L2_CAMERA_H_
#define NOX_VISUALS_CAMERA_V4L2_CAMERA_H_

#include "nox-visuals/camera/camera.h"

namespace nox::app {

class V4l2Camera : public Camera {
 public:
  // Opens the device, which may be in use by somebody else. Throws StreamError.
  explicit V4l2Camera(const std::string &device);
  ~V4l2Camera() override;

  std::string identity() const override;
  std::vector<CameraMode> modes() const override;
  std::optional<CameraMode> mode() const override;
  std::vector<CameraControl> controls() const override;
  bool set(std::uint32_t control, std::int64_t value) override;
  bool set_mode(const CameraMode &mode) override;

 private:
  void add_sizes(std::uint32_t format, std::vector<CameraMode> *modes) const;
  void add_rates(std::uint32_t format, std::uint32_t width, std::uint32_t height,
                 std::vector<CameraMode> *modes) const;
  bool read_value(CameraControl *control) const;
  std::vector<std::int64_t> menu_choices(const CameraControl &control) const;

  int file_;
};

// "Exposure, Auto" becomes exposure_auto.
std::string control_name(const std::string &name);

}  // namespace nox::app

#endif  // NOX_VISUALS_CAMERA_V4L2_CAMERA_H_
