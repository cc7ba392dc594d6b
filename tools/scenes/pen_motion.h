// How a pen moves that is drawn into a picture: at one speed along a curve all over it.
#ifndef SCENES_PEN_MOTION_H_
#define SCENES_PEN_MOTION_H_

#include <cstdint>
#include <vector>

#include "scenes/canvas.h"
#include "scenes/light_pen.h"

namespace nox::scenes {

struct PenMoment {
  bool visible;
  PenStroke stroke;  // while the shutter was open
  Point middle;      // of the stroke, as fractions of the picture from the top left: the truth
};

// Rounds of 200 frames: hovering, pressed, hovering, pressed, and gone for the last 20. It comes
// back hovering.
class PenMotion {
 public:
  // `speed` is in pixels a frame of a picture that is 640 wide, `shutter` the part of a frame for
  // which the shutter is open.
  PenMotion(int width, int height, float speed, float shutter, std::uint32_t frames);

  PenMoment at(std::uint32_t index) const;

 private:
  int width_, height_;
  std::vector<PenStroke> strokes_;
};

}  // namespace nox::scenes

#endif  // SCENES_PEN_MOTION_H_
