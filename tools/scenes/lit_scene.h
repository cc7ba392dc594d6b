// A pen of light drawn into a room or into somebody's video, as one camera sees both.
#ifndef SCENES_LIT_SCENE_H_
#define SCENES_LIT_SCENE_H_

#include <cstdint>
#include <functional>

#include "scenes/canvas.h"
#include "scenes/light.h"
#include "scenes/light_pen.h"
#include "scenes/pen_motion.h"
#include "video/nox_video_frame.h"

namespace nox::scenes {

struct LitPen {
  PenKind kind = PenKind::kBall;
  float speed = 2;  // pixels a frame of a picture that is 640 wide
  // The share of a frame for which the shutter is open at exposure 1: half in sunlight, up to 1
  // indoors, 0 for an instant.
  float open = 0;
  float exposure = 1.0F;  // the background comes with it
  Range range = Range::kStudio;
  float colours = 1.0F;  // how much stronger than they are the camera makes all colours
};

class LitScene {
 public:
  // Draws the background of a frame, without noise.
  using Background = std::function<void(std::uint32_t index, NoxVideoFrame *frame)>;

  LitScene(int width, int height, const LitPen &pen, std::uint32_t frames, Background background);

  // Where the pen is in frame `index`, which is below `frames`.
  PenMoment truth(std::uint32_t index) const;

  // `noise` in steps of luma; 0 for video that has its own.
  void render(std::uint32_t index, float noise, NoxVideoFrame *frame) const;

 private:
  LightPen pen_;
  PenMotion motion_;
  float colours_;
  Background background_;
  NoiseField noise_;
};

}  // namespace nox::scenes

#endif  // SCENES_LIT_SCENE_H_
