// How much darker a scene has to be for a pen to stand out in it.
#ifndef NOX_VISUALS_MASKS_AUTO_DARKENING_H_
#define NOX_VISUALS_MASKS_AUTO_DARKENING_H_

#include <cstdint>

#include "video/nox_video_frame.h"

namespace nox::app {

// The most that is taken from luma: the tip of a pen that is as bright as a sample can be in a
// video of 16 to 235 stays above the tracker's threshold of 170.
inline constexpr int kMostDarker = 50;

// Learns from the frames how much to take from luma: as much as brings all but a hundredth of the
// samples down to 160, so that walls stay below the tracker's threshold and merge with no spot. A
// pen is smaller than that.
class AutoDarkening {
 public:
  // The next frame, as it came. `held`: the level stays, since a pen is pressed. The first frame
  // sets the level, then it goes one step in a second's frames.
  void look(const NoxVideoFrame &frame, bool held);

  std::uint8_t level() const { return static_cast<std::uint8_t>(level_); }

 private:
  std::uint32_t frames_ = 0;
  int level_ = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_MASKS_AUTO_DARKENING_H_
