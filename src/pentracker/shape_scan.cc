#include "pentracker/shape_scan.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "pentracker/mask_rows.h"

namespace nox::pentracker {

ShapeScan::ShapeScan(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
  edges_.resize(static_cast<std::size_t>(most_edges(width)));
  for (auto *runs : {&above_, &row_}) runs->resize(edges_.size() / 2 + 1);
}

void ShapeScan::scan(const BitMask *mask, PixelGroups *groups) {
  groups_ = groups;
  groups_->clear();
  segment_count_ = 0;
  row_.front() = kNoRun;
  side_by_side_ = false;
  for (y_ = next_set_row(mask, 0); y_ < height_; ++y_) {
    if (stays_the_same(mask)) continue;
    const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y_) * mask->stride;
    read_edges(row, width_, edges_.data());
    reserve_row();
    std::swap(above_, row_);
    scan_row();
    if (row_.front().begin == kRightOfPicture) y_ = next_set_row(mask, y_ + 1) - 1;
  }
  // An empty row behind the last one ends what is left.
  edges_.front() = kRightOfPicture;
  reserve_row();
  std::swap(above_, row_);
  scan_row();
}

// Whether the row leaves everything as it is: it has the pixels of the row above, where the
// segments have their order already, and none of them takes turns with another.
inline bool ShapeScan::stays_the_same(const BitMask *mask) const {
  if (side_by_side_ || row_.front().begin == kRightOfPicture) return false;
  const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y_) * mask->stride;
  return std::memcmp(row - mask->stride, row, words_of(width_) * sizeof(std::uint64_t)) == 0;
}

// Makes room for all that one row can add: a group or a segment for every other pixel; a block for
// each segment that ends and for each that hands over its row.
void ShapeScan::reserve_row() {
  groups_->reserve(width_ / 2 + 1, 2 * width_ + 2);
  const auto wanted = static_cast<std::size_t>(segment_count_ + width_ + 1);
  if (segments_.size() < wanted) segments_.resize(2 * wanted);
}

// Turns the edges into runs.
inline void ShapeScan::scan_row() {
  next_above_ = above_.data();
  Run *run = row_.data();
  side_by_side_ = false;
  for (const std::int32_t *edge = edges_.data(); *edge != kRightOfPicture; edge += 2, ++run) {
    *run = scan_run(edge[0], edge[1], edge[2]);
  }
  while (next_above_->begin != kRightOfPicture) close_above();
  *run = kNoRun;
}

inline ShapeScan::Run ShapeScan::scan_run(std::int32_t begin, std::int32_t end,
                                          std::int32_t next_begin) {
  while (next_above_->end <= begin) close_above();
  Run run{begin, end, 0, 0, false};
  if (next_above_->begin <= begin) {
    leave_from(next_above_, begin);
    const Piece piece = take_above(&run, next_begin);
    run.first = piece.first;
    run.last = piece.last;
  } else {
    run.first = run.last =
        add_segment({begin, begin, y_, groups_->prepare_group(begin, y_), 0, false});
    groups_->add_groups(1);
  }
  while (next_above_->begin < end) append(&run, take_above(&run, next_begin));
  set_end(run.last, end);
  if (run.side_by_side) hand_over_row(run);
  side_by_side_ |= run.side_by_side;
  return run;
}

// Nothing lies below the next run above: its segments end.
inline void ShapeScan::close_above() {
  const Run &above = *next_above_++;
  for (std::int32_t i = above.first;; i = segment(i).next) {
    hand_over(&segment(i));
    if (i == above.last) return;
  }
}

// Drops from `above` what lies left of column `begin`, which is one of its own.
inline void ShapeScan::leave_from(Run *above, std::int32_t begin) {
  while (above->first != above->last && segment(segment(above->first).next).begin <= begin) {
    hand_over(&segment(above->first));
    above->first = segment(above->first).next;
  }
  above->begin = begin;
  Segment &first = segment(above->first);
  if (first.begin == begin) return;
  hand_over(&first);
  first.begin = begin;
}

// The segments of the next run above that lie over `run`. What is left of that run is kept where it
// reaches over the next one of the row, too.
inline ShapeScan::Piece ShapeScan::take_above(Run *run, std::int32_t next_begin) {
  Run &above = *next_above_;
  Piece piece{above.first, above.last};
  if (above.end > run->end) {
    piece.last = above.first;
    while (piece.last != above.last && segment(segment(piece.last).next).begin < run->end) {
      piece.last = segment(piece.last).next;
    }
    divide(piece.last, next_begin);
  } else {
    ++next_above_;
  }
  run->side_by_side |= above.side_by_side;
  return piece;
}

// Takes the segments up to `taken` out of the next run above. What is left of that run stays for
// the next one of the row, where it reaches over that one.
void ShapeScan::divide(std::int32_t taken, std::int32_t next_begin) {
  Run &above = *next_above_;
  if (above.end > next_begin && segment(taken).end > next_begin) {
    above.first = copy_beside(taken);
    if (above.last == taken) above.last = above.first;
    above.side_by_side = true;
  } else if (above.last == taken) {
    ++next_above_;
    return;
  } else {
    above.first = segment(taken).next;
  }
  if (above.end > next_begin) {
    leave_from(&above, next_begin);
  } else {
    close_above();
  }
}

// Continues `run`, which has met further segments of the row above. Their numbers fall; those that
// are not smaller than the last one of the run end here.
inline void ShapeScan::append(Run *run, Piece piece) {
  const std::int32_t group = segment(run->last).group;
  const std::int32_t met = segment(piece.first).group;
  if (met != group) groups_->merge(std::min(met, group), std::max(met, group));
  while (segment(piece.first).group >= group) {
    hand_over(&segment(piece.first));
    if (piece.first == piece.last) return;
    piece.first = segment(piece.first).next;
  }
  set_end(run->last, segment(piece.first).begin);
  segment(run->last).next = piece.first;
  run->last = piece.last;
}

// Gives the groups whose segments lie side by side the pixels of this row.
void ShapeScan::hand_over_row(const Run &run) {
  for (std::int32_t i = run.first;; i = segment(i).next) {
    Segment &s = segment(i);
    if (s.side_by_side) {
      groups_->append({s.begin, s.end, y_, y_, s.group});
      s.top = y_ + 1;
    }
    if (i == run.last) return;
  }
}

inline std::int32_t ShapeScan::add_segment(const Segment &made) {
  segment(segment_count_) = made;
  return segment_count_++;
}

// A second segment of the same group and columns.
std::int32_t ShapeScan::copy_beside(std::int32_t original) {
  hand_over(&segment(original));
  segment(original).side_by_side = true;
  return add_segment(segment(original));
}

inline void ShapeScan::set_end(std::int32_t i, std::int32_t end) {
  Segment &s = segment(i);
  if (s.end == end) return;
  hand_over(&s);
  s.end = end;
}

// Gives the group the rows above this one that it does not have yet.
inline void ShapeScan::hand_over(Segment *s) {
  if (s->top == y_) return;
  groups_->append({s->begin, s->end, s->top, y_ - 1, s->group});
  s->top = y_;
}

}  // namespace nox::pentracker
