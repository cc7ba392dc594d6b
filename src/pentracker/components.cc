#include "pentracker/components.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

#include "pentracker/mask_runs.h"

namespace nox::pentracker {

namespace {

// Groups are written to a row a few pixels at a time; what spills over the end of a run is
// overwritten by the next run or never looked at.
constexpr std::int32_t kFillStep = 8;

constexpr std::int32_t kRightOfPicture = std::numeric_limits<std::int32_t>::max();

void fill_groups(std::int32_t *groups, std::int32_t begin, std::int32_t end, std::int32_t group) {
  for (std::int32_t x = begin; x < end; x += kFillStep) {
    for (std::int32_t i = 0; i < kFillStep; ++i) groups[x + i] = group;
  }
}

// Appends the positions of the set bits to `out` and returns the new end.
std::int32_t *append_bits(std::int32_t *out, std::uint64_t bits, std::int32_t first) {
  for (; bits != 0; bits &= bits - 1) *out++ = first + std::countr_zero(bits);
  return out;
}

// Writes the pixels of one row four at a time, spilling over by up to Components::kCollectSlack.
void write_pixels(BlobPixel *out, std::int32_t begin, std::int32_t end, std::int32_t y) {
  for (std::int32_t x = begin; x < end; x += 4, out += 4) {
    for (std::int32_t i = 0; i < 4; ++i) out[i] = {x + i, y};
  }
}

}  // namespace

Components::Components(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
  const std::size_t words = at(words_of(width));
  for (Row *row : {&above_, &row_}) {
    row->words.resize(words);
    row->cuts.resize(words);
    row->groups.resize(words * kWordBits + kFillStep);
  }
  for (auto *events : {&starts_, &ends_, &contacts_}) events->resize(words * kWordBits + 1);
}

void Components::label(const BitMask *mask) {
  segment_count_ = group_count_ = merge_count_ = 0;
  pixel_count_ = 0;
  std::fill(above_.words.begin(), above_.words.end(), 0);
  std::fill(above_.cuts.begin(), above_.cuts.end(), 0);
  for (std::int32_t y = 0; y < height_; ++y) {
    load_row_words(mask, y, row_.words.data());
    std::fill(row_.cuts.begin(), row_.cuts.end(), 0);
    reserve_row();
    find_events(words_of(width_));
    scan_row(y);
    std::swap(above_, row_);
  }
}

// Makes room for all that one row can add: a segment for each pixel, a group for every other one.
void Components::reserve_row() {
  const std::size_t pixels = at(width_);
  if (segments_.size() < at(segment_count_) + pixels)
    segments_.resize(2 * segments_.size() + pixels);
  if (groups_.size() < at(group_count_) + pixels) {
    groups_.resize(2 * groups_.size() + pixels);
    parents_.resize(groups_.size());
  }
}

void Components::find_events(std::int32_t words) {
  std::int32_t *start = starts_.data();
  std::int32_t *end = ends_.data();
  std::int32_t *contact = contacts_.data();
  std::uint64_t left = 0;          // the pixel left of this word, in bit 0
  std::uint64_t left_overlap = 0;  // the same of the pixels that are set in both rows
  for (std::int32_t w = 0; w < words; ++w) {
    const std::uint64_t row = row_.words[at(w)];
    const std::uint64_t overlap = row & above_.words[at(w)];
    const std::uint64_t shifted = row << 1 | left;
    const std::uint64_t meets = overlap & (~(overlap << 1 | left_overlap) | above_.cuts[at(w)]);
    start = append_bits(start, row & ~shifted, w * kWordBits);
    end = append_bits(end, ~row & shifted, w * kWordBits);
    contact = append_bits(contact, meets, w * kWordBits);
    left = row >> (kWordBits - 1);
    left_overlap = overlap >> (kWordBits - 1);
    pixel_count_ += static_cast<std::size_t>(std::popcount(row));
  }
  if (left != 0) *end++ = words * kWordBits;
  *start = *contact = kRightOfPicture;
}

void Components::scan_row(std::int32_t y) {
  const std::int32_t *contact = contacts_.data();
  const std::int32_t *end = ends_.data();
  for (const std::int32_t *start = starts_.data(); *start != kRightOfPicture; ++start, ++end) {
    // A run starts in the group above its first pixel or, without one, in a new group. The new one
    // is prepared in any case, which spares a branch that noise makes unpredictable.
    const bool joins = *contact == *start;
    groups_[at(group_count_)] = {segment_count_, segment_count_, kNone, group_count_};
    parents_[at(group_count_)] = group_count_;
    std::int32_t group = joins ? above_.groups[at(*start)] : group_count_;
    group_count_ += joins ? 0 : 1;
    contact += joins ? 1 : 0;
    std::int32_t begin = *start;
    for (; *contact < *end; ++contact) group = pass_contact(group, *contact, y, &begin);
    add_segment(group, begin, *end, y);
  }
}

// At pixel x the run, until here in `group`, has a segment of the row above over it. Returns the
// group in which it goes on; where that is another one, the segment from `begin` ends before x.
inline std::int32_t Components::pass_contact(std::int32_t group, std::int32_t x, std::int32_t y,
                                             std::int32_t *begin) {
  const std::int32_t above = above_.groups[at(x)];
  if (above == group) return group;
  merge(std::min(group, above), std::max(group, above));
  if (above > group) return group;
  add_segment(group, *begin, x, y);
  row_.cuts[at(x / kWordBits)] |= std::uint64_t{1} << (x % kWordBits);
  *begin = x;
  return above;
}

inline void Components::add_segment(std::int32_t group, std::int32_t begin, std::int32_t end,
                                    std::int32_t y) {
  Group &owner = groups_[at(group)];
  // A new group names its first segment as its last one already: the link written here is
  // overwritten by the segment itself.
  segments_[at(owner.last)].next = segment_count_;
  segments_[at(segment_count_)] = {begin, end, y, kNone};
  owner.last = segment_count_++;
  fill_groups(row_.groups.data(), begin, end, group);
}

inline std::int32_t Components::root(std::int32_t group) {
  std::int32_t *parents = parents_.data();
  while (parents[group] != group) {
    parents[group] = parents[parents[group]];
    group = parents[group];
  }
  return group;
}

inline void Components::merge(std::int32_t small, std::int32_t large) {
  const std::int32_t kept = root(small);
  const std::int32_t absorbed = root(large);
  if (kept == absorbed) return;
  parents_[at(absorbed)] = kept;
  groups_[at(groups_[at(kept)].last_merged)].next_merged = absorbed;
  groups_[at(kept)].last_merged = groups_[at(absorbed)].last_merged;
  ++merge_count_;
}

void Components::collect(std::int32_t component, BlobPixel *pixels, Blob *blob) const {
  BlobPixel *out = pixels;
  std::int32_t min_x = std::numeric_limits<std::int32_t>::max();
  std::int32_t min_y = min_x;
  std::int32_t max_x = std::numeric_limits<std::int32_t>::min();
  std::int32_t max_y = max_x;
  for (std::int32_t g = component; g != kNone; g = groups_[at(g)].next_merged) {
    for (std::int32_t s = groups_[at(g)].first; s != kNone; s = segments_[at(s)].next) {
      const Segment &segment = segments_[at(s)];
      write_pixels(out, segment.begin, segment.end, segment.y);
      out += segment.end - segment.begin;
      min_x = std::min(min_x, segment.begin);
      max_x = std::max(max_x, segment.end - 1);
      min_y = std::min(min_y, segment.y);
      max_y = std::max(max_y, segment.y);
    }
  }
  blob->pixels = pixels;
  blob->pixel_count = static_cast<std::int32_t>(out - pixels);
  blob->min_x = min_x;
  blob->min_y = min_y;
  blob->max_x = max_x;
  blob->max_y = max_y;
}

}  // namespace nox::pentracker
