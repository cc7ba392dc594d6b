// Looks at the pen that the user shows: whether it is found, how large and how blurred it is, and
// what would help.
#ifndef NOX_VISUALS_TUNE_PEN_LOOK_H_
#define NOX_VISUALS_TUNE_PEN_LOOK_H_

#include <array>

#include "nox-visuals/doctor/finding.h"
#include "nox-visuals/tune/camera_pictures.h"
#include "nox-visuals/tune/light.h"

namespace nox::app {

// What was measured; sizes are in pixels of the tracker's work size, 448 by 252.
struct PenLook {
  int pictures = 0;
  int hovering = 0, pressed = 0;  // pictures that show it so
  double tip = 0;                 // the mean of width and height, median over the pictures
  double hovering_glow = 0, pressed_glow = 0;  // the lesser of width and height, likewise
  double speed = 0, blur = 0;  // a picture: medians while it moved; 0 when it did not
  std::array<bool, 3> came{};  // what reached 170 more than without it: Y, U, V
};

// Until the pen was seen well enough, hovering and pressed, but not longer than so many seconds.
// `without` is the light of the scene before the pen came.
PenLook look_at_pen(CameraPictures *pictures, const Light &without, double seconds);

Findings findings_of(const PenLook &look);

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_PEN_LOOK_H_
