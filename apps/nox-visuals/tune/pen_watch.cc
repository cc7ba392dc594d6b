#include "nox-visuals/tune/pen_watch.h"

#include <cstdint>

namespace nox::app {

std::optional<PenPlace> find_pen(PenTracker *tracker, const NoxVideoFrame &frame) {
  float x = 0;
  float y = 0;
  std::int32_t pressed = 0;
  if (pen_tracker_process(tracker, &frame, nullptr, &x, &y, &pressed) == 0) return {};
  // The tracker names the near corner of a work pixel, counted from the right.
  return PenPlace{1 - double{x} - 0.5 / kPenWorkWidth, double{y} + 0.5 / kPenWorkHeight,
                  pressed != 0};
}

std::optional<PenPlace> watch_for_false_pens(CameraPictures *pictures, double seconds) {
  const PenTrackerPointer tracker(pen_tracker_new());
  CameraPicture picture = pictures->next();
  const double end = picture.seconds + seconds;
  for (; picture.seconds < end; picture = pictures->next()) {
    if (const auto pen = find_pen(tracker.get(), *picture.frame)) return pen;
  }
  return {};
}

}  // namespace nox::app
