// A pen of light as a camera sees it: it saturates, it glows, and it smears while it moves.
#ifndef SCENES_LIGHT_PEN_H_
#define SCENES_LIGHT_PEN_H_

#include "scenes/canvas.h"
#include "scenes/light.h"
#include "video/nox_video_frame.h"

namespace nox::scenes {

enum class PenKind {
  kNone,
  kBall,  // a white core in a diffuser, which hides what is behind it
  kBare,  // a bare LED: a dot, and the glow that the lens makes of it
};

struct LightPen {
  PenKind kind = PenKind::kBall;
  float scale = 1.0F;     // pixels of the picture for one of a picture that is 640 wide
  float exposure = 1.0F;  // in which the pen's light is seen
  Range range = Range::kStudio;
};

// What the pen did while the shutter was open.
struct PenStroke {
  Point from, to;  // in pixels
  bool pressed;    // red, else blue
};

// Draws the pen into the picture: its light is added to what is there, averaged over the stroke.
void draw_pen(const LightPen &pen, const PenStroke &stroke, NoxVideoFrame *frame);

}  // namespace nox::scenes

#endif  // SCENES_LIGHT_PEN_H_
