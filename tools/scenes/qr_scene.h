// A camera's view of cards with QR codes that drift and turn slightly on a desk.
#ifndef SCENES_QR_SCENE_H_
#define SCENES_QR_SCENE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "scenes/canvas.h"
#include "scenes/qr_code.h"

namespace nox::scenes {

class QrScene {
 public:
  // One card per payload, side by side and as large as fits. Throws std::invalid_argument for a
  // payload that no code holds, or for a picture too small to give every module two pixels.
  QrScene(int width, int height, const std::vector<std::string> &payloads);

  // Draws frame `index` as the camera sees it: slightly blurred, in changing light, with noise.
  void render(std::uint32_t index, NoxVideoFrame *frame);

 private:
  Canvas canvas_;
  NoiseField noise_;
  std::vector<QrCode> codes_;
  float module_;  // side of a module in pixels
};

}  // namespace nox::scenes

#endif  // SCENES_QR_SCENE_H_
