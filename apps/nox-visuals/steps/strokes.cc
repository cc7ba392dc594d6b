#include "nox-visuals/steps/strokes.h"

namespace nox::app {

void StrokesStep::take(const Observation &in, std::vector<Observation> *out) {
  out->push_back(in);
  if (std::holds_alternative<Loss>(in)) lost_ = true;
  auto *pen = std::get_if<Pen>(&out->back());
  if (pen == nullptr) return;
  const bool the_same = pen->pressed && (!lost_ || pen->recovered);
  if (writing_ && !the_same) ++next_;
  writing_ = pen->pressed;
  lost_ = false;
  pen->stroke = next_;
}

}  // namespace nox::app
