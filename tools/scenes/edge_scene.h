// A desk whose edges come and go at known frames, for watching what lasts.
#ifndef SCENES_EDGE_SCENE_H_
#define SCENES_EDGE_SCENE_H_

#include <cstdint>

#include "scenes/canvas.h"

namespace nox::scenes {

// The desk, a light card that lies there until kCardGoes, a dark one from kCardComes on, and a ball
// that never rests. Frames count from 1.
class EdgeScene {
 public:
  static constexpr std::uint32_t kCardGoes = 131;   // the first frame without the light card
  static constexpr std::uint32_t kCardComes = 251;  // the first frame with the dark card

  EdgeScene(int width, int height);

  // Draws frame `index` as the camera sees it.
  void render(std::uint32_t index, NoxVideoFrame *frame);

 private:
  Canvas desk_;
  Canvas canvas_;
  NoiseField noise_;
};

}  // namespace nox::scenes

#endif  // SCENES_EDGE_SCENE_H_
