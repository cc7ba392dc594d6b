// Watches a scene without the pen for what the tracker takes for one.
#ifndef NOX_VISUALS_TUNE_PEN_WATCH_H_
#define NOX_VISUALS_TUNE_PEN_WATCH_H_

#include <memory>
#include <optional>

#include "nox-visuals/tune/camera_pictures.h"
#include "pentracker/pen_tracker.h"

namespace nox::app {

struct FreePenTracker {
  void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
};
using PenTrackerPointer = std::unique_ptr<PenTracker, FreePenTracker>;

// The middle of a pen, in fractions of the picture from its top left corner.
struct PenPlace {
  double x = 0, y = 0;
  bool pressed = false;
};

// None when the picture shows no pen.
std::optional<PenPlace> find_pen(PenTracker *tracker, const NoxVideoFrame &frame);

// Where the first false pen is; none when none comes for so many seconds.
std::optional<PenPlace> watch_for_false_pens(CameraPictures *pictures, double seconds);

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_PEN_WATCH_H_
