// From a mapped buffer to a frame that owns all the memory that the cores count on.
#ifndef NOXVISUALS_WHOLE_FRAME_H_
#define NOXVISUALS_WHOLE_FRAME_H_

#include <gst/video/video.h>

#include <cstdint>
#include <vector>

#include "video/nox_video_frame.h"
#include "video/plane_memory.h"

namespace nox::noxvisuals {

// What a core touches of a plane.
enum class Touches {
  kSamples,  // reads the samples and nothing else
  kPlanes,   // reads and writes all that the planes own, padding included
};

// A mapped frame for a core. It points into the mapped memory where that reaches far enough, and
// into a copy where it does not: in a buffer that is cropped or imported, or ends with its last
// sample. Samples that the memory lacks (a plane that goes on in the buffer's next memory) are 0 in
// the copy. Holds until the frame is unmapped.
class WholeFrame {
 public:
  WholeFrame(const GstVideoFrame &mapped, Touches touches);
  WholeFrame(const WholeFrame &) = delete;
  WholeFrame &operator=(const WholeFrame &) = delete;

  NoxVideoFrame &get() { return frame_; }

  // Brings what a core has drawn into a copy back into mapped memory, as far as that reaches.
  // Padding that is another plane's samples as well ends up as those.
  void write_back() const;

 private:
  void copy_plane(int p);
  template <typename Visit>
  void for_each_row(int p, std::int32_t columns, Visit visit) const;

  NoxVideoFrame mapped_{};
  NoxVideoFrame frame_{};
  video::PlaneExtent memory_[4] = {};    // mapped, around the first sample of each plane
  std::vector<std::uint8_t> copies_[4];  // empty where frame_ is mapped_
};

}  // namespace nox::noxvisuals

#endif  // NOXVISUALS_WHOLE_FRAME_H_
