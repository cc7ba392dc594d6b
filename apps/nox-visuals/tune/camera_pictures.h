// The pictures of a camera that runs, behind a seam that tests replace.
#ifndef NOX_VISUALS_TUNE_CAMERA_PICTURES_H_
#define NOX_VISUALS_TUNE_CAMERA_PICTURES_H_

#include "video/nox_video_frame.h"

namespace nox::app {

// Three planes, 4:2:0, that live until the next picture is asked for.
struct CameraPicture {
  const NoxVideoFrame *frame = nullptr;
  double seconds = 0;  // since any moment, when it came
};

class CameraPictures {
 public:
  CameraPictures() = default;
  virtual ~CameraPictures() = default;
  CameraPictures(const CameraPictures &) = delete;
  CameraPictures &operator=(const CameraPictures &) = delete;

  // Waits for the next picture. Throws StreamError when none comes any more, and when the user has
  // interrupted.
  virtual CameraPicture next() = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_CAMERA_PICTURES_H_
