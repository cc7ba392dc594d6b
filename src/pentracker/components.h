// Connected components of one mask, worked out on runs of set pixels.
#ifndef PENTRACKER_COMPONENTS_H_
#define PENTRACKER_COMPONENTS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "masks/bitmask.h"
#include "pentracker/blob_list.h"

namespace nox::pentracker {

// Scanning row by row and left to right, a pixel joins the group of the pixel above it or left of
// it; a pixel with neither starts a new group, and groups are numbered in that order. A pixel
// between two groups joins the one with the smaller number, and the two are merged: the root of the
// smaller-numbered group takes the pixels of the other's root behind its own, also where the roots
// themselves are numbered the other way round. So a component is known by the number of the root
// that is left, and its pixels are those of its groups one after another.
//
// The groups' own pixels are complete only when the scan has ended, so merging chains whole groups;
// that allows to merge at once, in the order in which the scan meets the pairs. A pair that is met
// again changes nothing.
class Components {
 public:
  Components(std::int32_t width, std::int32_t height);

  void label(const BitMask *mask);

  // Numbers of all groups ever made by the last call: 0 to group_count() - 1. Those for which
  // is_component() holds are the components; the others were merged into them.
  std::int32_t group_count() const { return group_count_; }
  bool is_component(std::int32_t group) const { return parents_[at(group)] == group; }
  std::int32_t component_count() const { return group_count_ - merge_count_; }
  std::size_t pixel_count() const { return pixel_count_; }  // of all components together

  // What collect() writes past the last pixel of a component, at most.
  static constexpr std::size_t kCollectSlack = 3;

  // Writes the pixels of a component to `pixels` and sets the blob's pixel count and bounding box.
  void collect(std::int32_t component, BlobPixel *pixels, Blob *blob) const;

 private:
  // Consecutive pixels of one row that joined one group.
  struct Segment {
    std::int32_t begin, end, y;
    std::int32_t next;  // the group's next one; kNone at its last
  };
  struct Group {
    std::int32_t first, last;               // its segments
    std::int32_t next_merged, last_merged;  // the chain of groups that a root has taken in
  };
  // One row: words of pixels, and the group of each set pixel.
  struct Row {
    std::vector<std::uint64_t> words;
    std::vector<std::uint64_t> cuts;  // pixels at which the group changes within a run
    std::vector<std::int32_t> groups;
  };
  static constexpr std::int32_t kNone = -1;

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

  void reserve_row();
  void find_events(std::int32_t words);
  void scan_row(std::int32_t y);
  std::int32_t pass_contact(std::int32_t group, std::int32_t x, std::int32_t y,
                            std::int32_t *begin);
  void add_segment(std::int32_t group, std::int32_t begin, std::int32_t end, std::int32_t y);
  std::int32_t root(std::int32_t group);
  void merge(std::int32_t small, std::int32_t large);

  std::int32_t width_, height_;
  Row above_, row_;
  // Events of the current row, left to right: where runs start and end, and where a run meets
  // another segment of the row above. Each list is closed by a value right of the picture.
  std::vector<std::int32_t> starts_, ends_, contacts_;
  std::vector<Segment> segments_;
  std::vector<Group> groups_;
  std::vector<std::int32_t> parents_;
  std::int32_t segment_count_ = 0;
  std::int32_t group_count_ = 0;
  std::int32_t merge_count_ = 0;
  std::size_t pixel_count_ = 0;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_COMPONENTS_H_
