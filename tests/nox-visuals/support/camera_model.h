// A camera made of numbers: the light of a scene goes through an exposure, a gain and a saturation
// into pictures that come late and noisy. Its settings can lie, refuse and round.
#ifndef TESTS_NOX_VISUALS_SUPPORT_CAMERA_MODEL_H_
#define TESTS_NOX_VISUALS_SUPPORT_CAMERA_MODEL_H_

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/camera/camera.h"
#include "nox-visuals/tune/camera_pictures.h"
#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::app {

// Part of the scene: its luma above black and its chroma off neutral, both at an exposure of 100
// and the driver's gain and saturation.
struct ScenePatch {
  std::int32_t x = 0, y = 0, width = 0, height = 0;  // in pixels of 448 by 252
  double luma = 0, u = 0, v = 0;
};

// As it is made it is a webcam as most are: all automatic, at 30 frames a second, with exposures of
// 0.3 to 200 ms, and a saturation that somebody has turned up.
class CameraModel final : public Camera, public CameraPictures {
 public:
  CameraModel();
  ~CameraModel() override;

  // What stands in view, later patches in front; what comes and goes is asked for each picture.
  std::vector<ScenePatch> scene;
  std::function<std::vector<ScenePatch>(int picture)> visitors;
  int delay = 2;  // pictures until a setting shows
  // Throws what a camera that is pulled out throws, with picture number `gone_at`.
  std::optional<int> gone_at;
  // What a control makes of a value that it is told; none refuses it. Controls without one take
  // all.
  std::map<std::uint32_t, std::function<std::optional<std::int64_t>(std::int64_t)>> takes;
  // Controls that say what they were told and do nothing.
  std::vector<std::uint32_t> liars;

  std::vector<CameraMode> all_modes;
  std::vector<CameraControl> all_controls;
  CameraControl &control(std::uint32_t id);
  int pictures() const { return picture_; }
  int changes() const { return changes_; }  // calls of set and set_mode

  std::string identity() const override;
  std::vector<CameraMode> modes() const override { return all_modes; }
  std::optional<CameraMode> mode() const override { return mode_; }
  std::vector<CameraControl> controls() const override;
  bool set(std::uint32_t control, std::int64_t value) override;
  bool set_mode(const CameraMode &mode) override;
  CameraPicture next() override;

 private:
  struct Response {
    double light = 1, colour = 1;
  };
  Response response() const;
  std::int64_t effective(std::uint32_t id) const;
  bool gone() const { return gone_at && picture_ >= *gone_at; }
  void draw(const std::vector<ScenePatch> &patches, const Response &response);
  void fill(std::uint8_t *row, std::int32_t count, double level);

  NoxVideoFrame frame_{};
  std::optional<CameraMode> mode_;
  std::deque<Response> late_;
  std::map<std::uint32_t, std::int64_t> truth_;  // of liars
  int picture_ = 0;
  int changes_ = 0;
  test::Random random_{1};
  std::array<int, 16381> noise_{};
};

}  // namespace nox::app

#endif  // TESTS_NOX_VISUALS_SUPPORT_CAMERA_MODEL_H_
