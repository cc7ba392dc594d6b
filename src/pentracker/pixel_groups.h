// What the scan of a mask makes of its pixels: groups, as blocks of pixels, and which of them
// touch.
//
// Row by row and left to right, a pixel joins the group of the pixel above it or left of it; a
// pixel with neither starts a new group, and groups are numbered in that order. A pixel between two
// groups joins the one with the smaller number, and the two are merged: the root of the
// smaller-numbered group takes the pixels of the other's root behind its own, also where the roots
// themselves are numbered the other way round.
//
// The groups' own pixels are complete only when the scan has ended, so merging chains whole groups;
// that allows to merge at once, in the order in which the scan meets the pairs. A pair that is met
// again changes nothing.
#ifndef PENTRACKER_PIXEL_GROUPS_H_
#define PENTRACKER_PIXEL_GROUPS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "pentracker/at.h"

namespace nox::pentracker {

struct Box {
  std::int32_t min_x, min_y, max_x, max_y;  // inclusive
};

// Pixels begin to end - 1 of each of the rows top to bottom, which belong to one group.
struct PixelBlock {
  std::int32_t begin, end, top, bottom, group;
};

struct PixelGroup {
  Box box;
  std::int32_t pixel_count;
  std::int32_t parent;                    // the group that has taken it in, itself if none has
  std::int32_t next_merged, last_merged;  // the chain of groups that a root has taken in
};
inline constexpr std::int32_t kNoGroup = -1;

class PixelGroups {
 public:
  void clear() { group_count_ = block_count_ = 0; }

  // Makes room for that many more.
  void reserve(std::int32_t groups, std::int32_t blocks) {
    grow(&groups_, group_count_ + groups);
    grow(&blocks_, block_count_ + blocks);
  }

  // Describes the next group, whose first pixel will be (x, y), and returns its number; it counts
  // only from the next add_group on.
  std::int32_t prepare_group(std::int32_t x, std::int32_t y) {
    const std::int32_t made = group_count_;
    groups_[at(made)] = {{x, y, x, y}, 0, made, kNoGroup, made};
    return made;
  }
  void add_groups(std::int32_t count) { group_count_ += count; }

  // Gives a group pixels that follow all those it has.
  void append(const PixelBlock &block) {
    blocks_[at(block_count_++)] = block;
    PixelGroup &group = groups_[at(block.group)];
    group.pixel_count += (block.end - block.begin) * (block.bottom - block.top + 1);
    group.box.min_x = std::min(group.box.min_x, block.begin);
    group.box.max_x = std::max(group.box.max_x, block.end - 1);
    group.box.max_y = block.bottom;
  }

  // The root of `small` takes in that of `large`.
  void merge(std::int32_t small, std::int32_t large) {
    const std::int32_t kept = root(small);
    const std::int32_t absorbed = root(large);
    if (kept == absorbed) return;
    groups_[at(absorbed)].parent = kept;
    groups_[at(groups_[at(kept)].last_merged)].next_merged = absorbed;
    groups_[at(kept)].last_merged = groups_[at(absorbed)].last_merged;
  }

  std::int32_t group_count() const { return group_count_; }
  const PixelGroup &group(std::int32_t i) const { return groups_[at(i)]; }

  // The blocks, in an order in which those of one group follow each other as its pixels do.
  const PixelBlock *blocks() const { return blocks_.data(); }
  std::int32_t block_count() const { return block_count_; }

 private:
  template <typename T>
  static void grow(std::vector<T> *table, std::int32_t count) {
    if (table->size() < at(count)) table->resize(2 * at(count));
  }

  std::int32_t root(std::int32_t i) {
    while (groups_[at(i)].parent != i) {
      std::int32_t &parent = groups_[at(i)].parent;
      parent = groups_[at(parent)].parent;
      i = parent;
    }
    return i;
  }

  std::vector<PixelGroup> groups_;
  std::vector<PixelBlock> blocks_;
  std::int32_t group_count_ = 0;
  std::int32_t block_count_ = 0;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_PIXEL_GROUPS_H_
