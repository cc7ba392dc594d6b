#include "nox-visuals/steps/recovery.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace nox::app {
namespace {

constexpr int kWidestAfter = 3;

// In widths of the picture.
double distance(const Sighting &a, const Sighting &b) {
  constexpr double kHeight = double{kPenWorkHeight} / kPenWorkWidth;
  return std::hypot(static_cast<double>(a.x - b.x), static_cast<double>(a.y - b.y) * kHeight);
}

// What hovers for a tracker to which the chroma planes are exchanged.
std::optional<Sighting> find_pressed(PenTracker *tracker, const NoxVideoFrame &frame) {
  NoxVideoFrame exchanged = frame;
  std::swap(exchanged.planes[1], exchanged.planes[2]);
  std::swap(exchanged.strides[1], exchanged.strides[2]);
  Sighting pen{0, 0, true, true};
  std::int32_t its_state = 0;
  if (pen_tracker_process(tracker, &exchanged, nullptr, &pen.x, &pen.y, &its_state) == 0 ||
      its_state != 0) {
    return std::nullopt;
  }
  return pen;
}

}  // namespace

void Recovery::saw(const Sighting &pen) {
  second_.reset();
  last_ = pen;
  since_ = 0;
}

void Recovery::forget() {
  second_.reset();
  last_.reset();
}

std::optional<Sighting> Recovery::look(const NoxVideoFrame &frame) {
  ++since_;
  if (second_ == nullptr) second_.reset(pen_tracker_new());
  const auto found = find_pressed(second_.get(), frame);
  const double reach = kRecoveryReach * std::min(since_, kWidestAfter);
  if (!found || distance(*found, *last_) > reach) {
    if (!looks()) second_.reset();
    return std::nullopt;
  }
  last_ = found;
  since_ = 0;
  return found;
}

}  // namespace nox::app
