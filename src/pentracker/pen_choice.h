// Which blob is the pen, and is it pressed?
#ifndef PENTRACKER_PEN_CHOICE_H_
#define PENTRACKER_PEN_CHOICE_H_

#include "pentracker/pen_tracker.h"

namespace nox::pentracker {

// Decides from the blobs of the current frame and the pen of the last one, and sets the tracker's
// `pen`, `pressed` and `found`. `pressed` keeps its value when there is no pen.
void choose_pen(PenTracker *tracker);

}  // namespace nox::pentracker

#endif  // PENTRACKER_PEN_CHOICE_H_
