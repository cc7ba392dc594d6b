// Waits until a setting has taken effect, as the pictures show: drivers say too early that it has.
#ifndef NOX_VISUALS_TUNE_SETTLING_H_
#define NOX_VISUALS_TUNE_SETTLING_H_

#include "nox-visuals/tune/camera_pictures.h"
#include "nox-visuals/tune/light.h"

namespace nox::app {

class Settling {
 public:
  explicit Settling(CameraPictures *pictures) : pictures_(pictures) {}

  // After a setting that changes the light much: waits until the pictures differ from `before`, and
  // so learns how late this camera is. False when they never do.
  bool wait_for_change(const Light &before);

  // After any setting: waits as long as this camera needs, and then until the light stands still.
  void wait();

 private:
  int delay_ = 15;  // pictures, as long as it is not known better
  CameraPictures *pictures_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_SETTLING_H_
