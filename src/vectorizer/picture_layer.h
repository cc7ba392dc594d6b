// A picture copied whole, to be drawn where the planes of a frame share memory.
#ifndef VECTORIZER_PICTURE_LAYER_H_
#define VECTORIZER_PICTURE_LAYER_H_

#include <cstdint>
#include <vector>

#include "video/nox_video_frame.h"

namespace nox::vectorizer {

// Whether the drawing of `in` may be written into `out` row by row, each as soon as its history is
// known: no plane of `out` overlaps another one or itself, and none overlaps a plane of `in` but
// for one that is that very plane.
bool rows_are_apart(const NoxVideoFrame &in, const NoxVideoFrame &out);

// The picture with an alpha plane that tells where it shows, laid over a white page once it is
// whole.
class PictureLayer {
 public:
  explicit PictureLayer(const NoxVideoFrame &in);
  PictureLayer(const PictureLayer &) = delete;
  PictureLayer &operator=(const PictureLayer &) = delete;

  // Shows the pixels of row `y` whose bit is set at full strength, the others washed out.
  void set_alpha(std::int32_t y, const std::uint64_t *bits);

  // Draws over whatever `out` holds. Where a row's padding is another plane's samples these end up
  // as drawn for that plane, those of an alpha plane as they were.
  void draw_onto(const NoxVideoFrame &out) const;

 private:
  NoxVideoFrame frame_{};
  std::vector<std::uint8_t> planes_[4];  // what frame_ points into
};

}  // namespace nox::vectorizer

#endif  // VECTORIZER_PICTURE_LAYER_H_
