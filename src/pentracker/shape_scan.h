// The scan for masks of smooth shapes, whose rows differ little from each other.
#ifndef PENTRACKER_SHAPE_SCAN_H_
#define PENTRACKER_SHAPE_SCAN_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "masks/bitmask.h"
#include "pentracker/at.h"
#include "pentracker/mask_rows.h"
#include "pentracker/pixel_groups.h"

namespace nox::pentracker {

// Along a run the group changes only to smaller numbers: a run is a list of segments, each of one
// group, with falling numbers. The run below takes the list over as it is, save for what lies left
// or right of it: a coloured disc costs a step or two a row, not one for each of the segments that
// its rim leaves behind. A segment that keeps its columns grows into a block of pixels, and is
// handed to its group only when it changes.
class ShapeScan {
 public:
  ShapeScan(std::int32_t width, std::int32_t height);

  // Fills `groups` with the pixels of `mask`.
  void scan(const BitMask *mask, PixelGroups *groups);

 private:
  // Columns begin to end - 1 of the rows from `top` on.
  struct Segment {
    std::int32_t begin, end, top;
    std::int32_t group;
    std::int32_t next;  // in the run; without meaning in the last one
    // Its group has had segments side by side. Their rows take turns in the group's list, so that
    // no block of such a segment is higher than one row.
    bool side_by_side;
  };
  struct Run {
    std::int32_t begin, end;
    std::int32_t first, last;  // segments
    bool side_by_side;         // that any of them may be
  };
  // Segments of a run, from the first to the last.
  struct Piece {
    std::int32_t first, last;
  };
  static constexpr Run kNoRun{kRightOfPicture, kRightOfPicture, 0, 0, false};

  bool stays_the_same(const BitMask *mask) const;
  void reserve_row();
  void scan_row();
  Run scan_run(std::int32_t begin, std::int32_t end, std::int32_t next_begin);
  void close_above();
  void leave_from(Run *above, std::int32_t begin);
  Piece take_above(Run *run, std::int32_t next_begin);
  void divide(std::int32_t taken, std::int32_t next_begin);
  void append(Run *run, Piece piece);
  void hand_over_row(const Run &run);

  std::int32_t add_segment(const Segment &made);
  std::int32_t copy_beside(std::int32_t original);
  void set_end(std::int32_t i, std::int32_t end);
  void hand_over(Segment *s);

  Segment &segment(std::int32_t i) { return segments_[at(i)]; }

  std::int32_t width_, height_;
  std::int32_t y_ = 0;               // the row that is scanned
  std::vector<std::int32_t> edges_;  // of its runs
  std::vector<Run> above_, row_;     // each closed by a run right of the picture
  Run *next_above_ = nullptr;        // the first run of the row above that may still be met
  bool side_by_side_ = false;        // that any segments of the row may be
  std::vector<Segment> segments_;
  std::int32_t segment_count_ = 0;
  PixelGroups *groups_ = nullptr;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_SHAPE_SCAN_H_
