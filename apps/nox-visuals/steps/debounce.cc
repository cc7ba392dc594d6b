#include "nox-visuals/steps/debounce.h"

namespace nox::app {

void Debounce::take(const Observation &in, std::vector<Observation> *out) {
  out->push_back(in);
  if (auto *pen = std::get_if<Pen>(&out->back())) {
    pressed_ = settled(*pen);
    pen->pressed = *pressed_;
  } else if (auto *loss = std::get_if<Loss>(&out->back())) {
    loss->pressed = pressed_.value_or(loss->pressed);
    pressed_.reset();
    changed_ns_.reset();
  }
}

// Whether the pen is pressed, as far as that has lasted.
bool Debounce::settled(const Pen &pen) {
  const std::int64_t now = stream_ns(pen.when);
  if (!pressed_ || pen.pressed == *pressed_) {
    changed_ns_.reset();
    return pen.pressed;
  }
  if (!changed_ns_) changed_ns_ = now;
  if (now - *changed_ns_ < lasting_ns_) return *pressed_;
  changed_ns_.reset();
  return pen.pressed;
}

}  // namespace nox::app
