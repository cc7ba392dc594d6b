// Learns what to hide from the tracker, from a scene in which nobody shows the pen.
#ifndef NOX_VISUALS_MASKS_MASK_LEARNER_H_
#define NOX_VISUALS_MASKS_MASK_LEARNER_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "nox-visuals/masks/blanking.h"
#include "nox-visuals/masks/picture_mask.h"
#include "pentracker/pen_tracker.h"
#include "video/nox_video_frame.h"

namespace nox::app {

// Hidden is what is strongly coloured, in at least one of fifty frames, and what is taken for a pen
// all the same. All of it at the tracker's own size, with a margin of three of its pixels. What is
// merely bright stays: a pen in front of a white wall can be seen.
class MaskLearner {
 public:
  MaskLearner();
  ~MaskLearner();
  MaskLearner(const MaskLearner &) = delete;
  MaskLearner &operator=(const MaskLearner &) = delete;

  // The next frame, planar 4:2:0, as the tracker will see it later. In the first half of the time
  // `pens` is false: then colours are counted. In the second half what is still taken for a pen is
  // hidden too.
  void look(const NoxVideoFrame &frame, bool pens);

  // What has been learned, of the tracker's size.
  PictureMask mask() const;

  // Whether something that moved was taken for a pen: then somebody may have shown one, and what
  // was hidden is its path.
  bool saw_moving_pen() const { return moved_; }

 private:
  struct Free {
    void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
  };
  using Tracker = std::unique_ptr<PenTracker, Free>;

  struct Place {
    float x, y;
  };

  void count_colours();
  void follow(const std::optional<Place> &pen);
  void look_for_pens(const NoxVideoFrame &frame);
  void blank_anew(const NoxVideoFrame &frame);

  Tracker eye_;     // sees each frame as it is
  Tracker second_;  // sees it without what has been learned
  int frames_ = 0;
  std::vector<std::uint32_t> coloured_;  // frames in which a pixel was, row by row
  PictureMask pens_;                     // what was taken for a pen all the same
  NoxVideoFrame blanked_{};              // a copy of the frame
  Blanking blanking_;                    // of what was learned so far; for blanked_'s size
  std::optional<Place> from_, last_;     // of a pen that was followed
  bool moved_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_MASKS_MASK_LEARNER_H_
