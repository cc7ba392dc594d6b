// Picks up a pen that a single bad frame lost.
//
// The tracker takes a pen for pressed only if the frame before showed one, so a pressed pen that is
// blurred away in one frame stays lost until it hovers. Here a second tracker looks at the frames
// that follow a loss with the two chroma planes exchanged: to it a pressed pen hovers, and a
// hovering one is found in the first frame. What it finds close to where the pen was last is that
// pen. Anywhere else it may be any red thing, and too long after the loss as well.
//
// It starts anew with each loss. Fed in every frame it found the same pens, for the price of a
// second tracker all the time (docs/pen-tracking.md).
#ifndef NOX_VISUALS_STEPS_RECOVERY_H_
#define NOX_VISUALS_STEPS_RECOVERY_H_

#include <memory>
#include <optional>

#include "nox-visuals/steps/sighting.h"
#include "pentracker/pen_tracker.h"
#include "video/nox_video_frame.h"

namespace nox::app {

// For how many frames without a pen one is looked for.
inline constexpr int kRecoveryFrames = 10;

// How far from its last place it may be, in widths of the picture, in the first frame; in the
// second it is twice as far, from the third on three times.
inline constexpr double kRecoveryReach = 0.12;

class Recovery {
 public:
  // The tracker itself has found the pen in the frame: that counts.
  void saw(const Sighting &pen);

  // Whether a frame in which the tracker found no pen is to be looked at.
  bool looks() const { return last_ && since_ < kRecoveryFrames; }

  // The pen, pressed, in a frame in which the tracker found none, if it is there. Only while
  // looks(). The frame is planar 4:2:0, as for pen_tracker_process().
  std::optional<Sighting> look(const NoxVideoFrame &frame);

  // The stream begins anew.
  void forget();

 private:
  struct Free {
    void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
  };

  std::unique_ptr<PenTracker, Free> second_;  // since the loss; none while the pen is there
  std::optional<Sighting> last_;
  int since_ = 0;  // frames without a pen
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_RECOVERY_H_
