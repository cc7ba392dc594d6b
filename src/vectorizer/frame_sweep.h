// One frame through the vectorizer in one sweep from top to bottom.
#ifndef VECTORIZER_FRAME_SWEEP_H_
#define VECTORIZER_FRAME_SWEEP_H_

#include <cstddef>
#include <cstdint>

#include "vectorizer/bit_rows.h"
#include "vectorizer/mask_counters.h"
#include "video/nox_video_frame.h"

namespace nox::vectorizer {

// Goes down a frame in bands of a few rows, each through all steps while it is in the nearest
// cache: edges, closing, history, drawing. Edges run ahead of the drawing by the three rows that
// they look at, so a frame can be drawn over itself. Where planes share memory, the picture is
// copied first and drawn at the end.
//
// Keeps the rows of bits between two bands, some 20 KB at a width of 1920, and nothing from frame
// to frame.
class FrameSweep {
 public:
  FrameSweep(std::int32_t width, std::int32_t height);
  ~FrameSweep();
  FrameSweep(const FrameSweep &) = delete;
  FrameSweep &operator=(const FrameSweep &) = delete;

  // Draws `in`, of the size told to the constructor, into the planes of `out`; the two may share
  // memory in any way. `in_all` and `in_any` take this frame's step.
  void draw(const NoxVideoFrame &in, const NoxVideoFrame &out, MaskCounters &in_all,
            MaskCounters &in_any);

 private:
  // Calls draw(y, lasting) for one band after the other: the rows from `y` on, and where the
  // picture shows in them.
  template <typename Draw>
  void for_each_band(const NoxVideoFrame &in, MaskCounters &in_all, MaskCounters &in_any,
                     Draw draw);
  void draw_rows(const NoxVideoFrame &in, const NoxVideoFrame &out, MaskCounters &in_all,
                 MaskCounters &in_any);
  void draw_layer(const NoxVideoFrame &in, const NoxVideoFrame &out, MaskCounters &in_all,
                  MaskCounters &in_any);
  void mark_edges(const NoxVideoFrame &in, std::int32_t first, std::int32_t end,
                  BitRows rows) const;
  void draw_luma(const NoxVideoFrame &in, const NoxVideoFrame &out, std::int32_t y) const;
  void draw_chroma(const NoxVideoFrame &in, const NoxVideoFrame &out, std::int32_t r);
  void draw_chroma_row(const NoxVideoFrame &in, const NoxVideoFrame &out, int p, std::int32_t r);

  std::int32_t width_;
  std::int32_t height_;
  std::uint64_t *block_;  // owned; all that follows lies in it
  BitRows edges_;
  BitRows dilated_;
  BitRows lasting_;  // the band's closed edges, then what lasts of them
  std::uint64_t *any_of_pair_;
  std::uint64_t *both_of_pair_;
};

}  // namespace nox::vectorizer

#endif  // VECTORIZER_FRAME_SWEEP_H_
