// A pen of light over a desk, as a camera sees it, with the truth about where it is.
#ifndef SCENES_PEN_SCENE_H_
#define SCENES_PEN_SCENE_H_

#include <cstdint>

#include "scenes/canvas.h"

namespace nox::scenes {

struct PenTruth {
  bool visible;
  bool pressed;
  Point
      at;  // centre of the light, as fractions of the picture's width and height, from the top left
};

// The pen is a white light with a halo: blue while it hovers, red while it is pressed. It runs
// along a closed curve over the free middle of the desk, is pressed for a while in every round, and
// disappears for a second now and then.
class PenScene {
 public:
  PenScene(int width, int height);

  // Where the pen is in frame `index`, at 30 frames a second.
  static PenTruth truth(std::uint32_t index);

  // Draws frame `index` without the camera's blur and noise, and then as the camera sees it.
  void draw(std::uint32_t index) { draw(index, truth(index)); }
  void draw(std::uint32_t index, const PenTruth &pen);  // the same with the pen elsewhere
  void render(std::uint32_t index, NoxVideoFrame *frame);

  Canvas &canvas() { return canvas_; }

 private:
  Canvas desk_;
  Canvas canvas_;
  NoiseField noise_;
};

}  // namespace nox::scenes

#endif  // SCENES_PEN_SCENE_H_
