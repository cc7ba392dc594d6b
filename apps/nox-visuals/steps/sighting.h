// What a tracker says of a frame that shows the pen.
#ifndef NOX_VISUALS_STEPS_SIGHTING_H_
#define NOX_VISUALS_STEPS_SIGHTING_H_

namespace nox::app {

struct Sighting {
  float x = 0;  // as in the element's event: from the right edge
  float y = 0;
  bool pressed = false;
  bool recovered = false;  // the element did not find it
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_SIGHTING_H_
