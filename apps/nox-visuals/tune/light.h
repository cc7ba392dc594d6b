// How much of a picture is as bright, or as strongly coloured, as a pen.
#ifndef NOX_VISUALS_TUNE_LIGHT_H_
#define NOX_VISUALS_TUNE_LIGHT_H_

#include <array>

#include "nox-visuals/tune/camera_pictures.h"
#include "video/nox_video_frame.h"

namespace nox::app {

struct Light {
  std::array<double, 3> reaching{};  // the share of each plane's samples that reach 170
  double luma = 0;                   // the mean of the luma samples

  // Of the plane that has the most.
  double most() const;
};

Light measure_light(const NoxVideoFrame &frame);

// The mean of the next `count` pictures: noise and lamps that flicker average out.
Light measure_light(CameraPictures *pictures, int count);

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_LIGHT_H_
