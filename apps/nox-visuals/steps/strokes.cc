#include "nox-visuals/steps/strokes.h"

namespace nox::app {

void StrokesStep::take(const Observation &in, std::vector<Observation> *out) {
  out->push_back(in);
  auto *pen = std::get_if<Pen>(&out->back());
  const bool pressed = pen != nullptr && pen->pressed;
  if (std::holds_alternative<Code>(in)) return;
  if (pressed_ && !pressed) ++next_;
  pressed_ = pressed;
  if (pen != nullptr) pen->stroke = next_;
}

}  // namespace nox::app
