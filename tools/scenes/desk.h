// The desk before the camera: still edges, and things that a tracker of light must not take for a
// pen.
#ifndef SCENES_DESK_H_
#define SCENES_DESK_H_

#include "scenes/canvas.h"

namespace nox::scenes {

// Draws a desk with a bright lamp (top left), a blue cloth (bottom left), a red cup (bottom right)
// and a few sheets and pencils; the middle is free. Everything scales with the canvas.
void draw_desk(Canvas *canvas);

// The exposure of frame `index`, at 30 frames a second: light that changes slowly by a tenth or so.
float ambient_light(std::uint32_t index);

}  // namespace nox::scenes

#endif  // SCENES_DESK_H_
