#include "scenes/edge_scene.h"

#include <cmath>

#include "scenes/desk.h"

namespace nox::scenes {
namespace {

constexpr float kBlur = 0.6F;
constexpr float kNoise = 2.0F;
constexpr Color kLightCard{215, 210, 190};
constexpr Color kDarkCard{22, 26, 34};
constexpr Color kBall{230, 230, 225};

}  // namespace

EdgeScene::EdgeScene(int width, int height)
    : desk_(width, height), canvas_(width, height), noise_(3) {
  draw_desk(&desk_);
}

void EdgeScene::render(std::uint32_t index, NoxVideoFrame *frame) {
  const auto width = static_cast<float>(canvas_.width());
  const auto height = static_cast<float>(canvas_.height());
  canvas_ = desk_;
  if (index < kCardGoes) {
    canvas_.rectangle({0.30F * width, 0.55F * height}, {0.42F * width, 0.76F * height}, kLightCard);
  }
  if (index >= kCardComes) {
    canvas_.rectangle({0.60F * width, 0.57F * height}, {0.74F * width, 0.78F * height}, kDarkCard);
  }
  const float t = static_cast<float>(index) / 30.0F;
  canvas_.disc(
      {width * (0.51F + 0.05F * std::sin(2.0F * t)), height * (0.66F + 0.08F * std::cos(3.0F * t))},
      0.02F * width, kBall);
  canvas_.blur(kBlur);
  canvas_.add_noise(noise_, index, kNoise);
  canvas_.write(frame);
}

}  // namespace nox::scenes
