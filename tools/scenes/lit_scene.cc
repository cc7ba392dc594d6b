#include "scenes/lit_scene.h"

#include <utility>

namespace nox::scenes {

LitScene::LitScene(int width, int height, const LitPen &pen, std::uint32_t frames,
                   Background background)
    : pen_{pen.kind, static_cast<float>(width) / 640.0F, pen.exposure, pen.range},
      motion_(width, height, pen.speed, pen.open * pen.exposure, frames),
      colours_(pen.colours),
      background_(std::move(background)),
      noise_(3) {}

PenMoment LitScene::truth(std::uint32_t index) const {
  PenMoment moment = motion_.at(index);
  if (pen_.kind == PenKind::kNone) moment.visible = false;
  return moment;
}

void LitScene::render(std::uint32_t index, float noise, NoxVideoFrame *frame) const {
  background_(index, frame);
  const PenMoment moment = truth(index);
  if (moment.visible) draw_pen(pen_, moment.stroke, frame);
  if (colours_ != 1) strengthen_colours(frame, colours_);
  if (noise > 0) add_sensor_noise(frame, noise_, index, noise);
}

}  // namespace nox::scenes
