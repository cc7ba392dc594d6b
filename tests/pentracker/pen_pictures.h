// I420 pictures with a pen, its regions and things that are none, for tests of the tracker.
#ifndef PENTRACKER_PEN_PICTURES_H_
#define PENTRACKER_PEN_PICTURES_H_

#include <cstdint>

#include "support/guarded_plane.h"
#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::test {

// A rectangle in fractions of the picture.
struct Part {
  double left, top, width, height;
};

// A picture whose planes end at unreadable memory. Odd sizes have their chroma rounded up, as
// GStreamer's pictures have; every row is `padding` bytes longer than its samples.
class PenPicture {
 public:
  PenPicture(std::int32_t width, std::int32_t height, std::int32_t padding = 0);

  const NoxVideoFrame &frame() const { return frame_; }
  std::uint8_t *row(int plane, std::int32_t y) { return planes_[plane].row(y); }

  // Dark and without colour.
  void clear();
  // Fills a part of one plane: 0 luma, 1 U (hover), 2 V (press).
  void fill(int plane, Part part, std::uint8_t value);
  // A spot of `side` pixels at work size, with its region around it, centred at fractions x and y.
  void draw_pen(double x, double y, double side, int region_plane);
  void add_noise(Random *random, std::int32_t strength);
  void fill_random(Random *random);

 private:
  GuardedPlane planes_[3];
  NoxVideoFrame frame_{};
};

}  // namespace nox::test

#endif  // PENTRACKER_PEN_PICTURES_H_
