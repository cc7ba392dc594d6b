#include "scenes/qr_scene.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace nox::scenes {
namespace {

constexpr Color kDesk{120, 105, 90};
constexpr Color kDeskEdge{70, 60, 55};
constexpr float kBlur = 0.7F;
constexpr float kNoise = 4.0F;
constexpr float kMargin = 1.35F;       // room for a card to turn and drift, as a factor of its side
constexpr float kQuietModules = 8.0F;  // four on either side

float cell_side(int width, int height, std::size_t cards) {
  return std::min(static_cast<float>(width) / static_cast<float>(cards),
                  static_cast<float>(height));
}

}  // namespace

QrScene::QrScene(int width, int height, const std::vector<std::string> &payloads)
    : canvas_(width, height), noise_(1) {
  int modules = 0;
  for (const std::string &payload : payloads) {
    codes_.emplace_back(payload);
    modules = std::max(modules, codes_.back().size());
  }
  const float side = cell_side(width, height, std::max<std::size_t>(payloads.size(), 1));
  module_ = side / (kMargin * (static_cast<float>(modules) + kQuietModules));
  if (module_ < 2.0F) throw std::invalid_argument("the picture is too small for these codes");
}

void QrScene::render(std::uint32_t index, NoxVideoFrame *frame) {
  const auto width = static_cast<float>(canvas_.width());
  const auto height = static_cast<float>(canvas_.height());
  const auto t = static_cast<float>(index) / 30.0F;  // seconds, at 30 frames each
  canvas_.fill(kDesk);
  canvas_.rectangle({0, height * 0.9F}, {width, height * 0.93F}, kDeskEdge);
  for (std::size_t i = 0; i < codes_.size(); ++i) {
    const float phase = t + static_cast<float>(i);
    const float cell = width / static_cast<float>(codes_.size());
    const Point centre{cell * (static_cast<float>(i) + 0.5F) + 2.0F * module_ * std::sin(phase),
                       height * 0.5F + module_ * std::cos(1.3F * phase)};
    draw_qr_code(&canvas_, codes_[i], centre, module_, 0.15F * std::sin(0.8F * phase));
  }
  canvas_.blur(kBlur);
  canvas_.expose(0.9F + 0.08F * std::sin(0.5F * t));
  canvas_.add_noise(noise_, index, kNoise);
  canvas_.write(frame);
}

}  // namespace nox::scenes
