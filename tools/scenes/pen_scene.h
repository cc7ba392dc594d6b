// A camera's view of a desk over which somebody moves a pen of light.
#ifndef SCENES_PEN_SCENE_H_
#define SCENES_PEN_SCENE_H_

#include <cstdint>

#include "scenes/canvas.h"

namespace nox::scenes {

// Where the pen is in one frame.
struct PenState {
  bool visible;
  bool pressed;
  Point tip;  // in pixels of the picture
};

// On the desk lie things with still edges (a sheet of paper, a ruler) and things that a tracker may
// take for a pen: a bright lamp, a red cup and a blue cloth. The pen's tip is white, in a glow that
// is blue while it hovers and red while it presses. It follows a closed curve between them, is put
// away for a while in every round and comes back hovering.
class PenScene {
 public:
  PenScene(int width, int height);

  // Frames are meant for 30 a second; a round takes kRound of them.
  static constexpr std::uint32_t kRound = 300;
  PenState pen(std::uint32_t index) const;

  // Draws frame `index` as the camera sees it: slightly blurred, in slowly changing light, with
  // noise.
  void render(std::uint32_t index, NoxVideoFrame *frame);

 private:
  Point at(float x, float y) const;  // fractions of the picture, as pixels
  void draw_desk();
  void draw_pen(const PenState &pen);

  Canvas canvas_;
  NoiseField noise_;
};

}  // namespace nox::scenes

#endif  // SCENES_PEN_SCENE_H_
