// Connected components of one mask, worked out on runs of set pixels.
#ifndef PENTRACKER_COMPONENTS_H_
#define PENTRACKER_COMPONENTS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "masks/bitmask.h"
#include "pentracker/blob_list.h"
#include "pentracker/pixel_run_kernels.h"

namespace nox::pentracker {

struct Box {
  std::int32_t min_x, min_y, max_x, max_y;  // inclusive
};

struct Component {
  std::int32_t id;
  std::int32_t first_pixel;  // among the pixels of all components
  std::int32_t pixel_count;
  Box box;
};

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

  // Returns whether anything has changed. A mask that is the same as the last one keeps its
  // components, at the price of comparing the two.
  bool label(const BitMask *mask);

  // The components of the last mask, by rising id.
  const std::vector<Component> &components() const { return components_; }
  std::size_t pixel_count() const { return pixel_count_; }  // of all components together

  // Writes the pixels of all components, one component after the other.
  void write_pixels(BlobPixel *pixels) const;

 private:
  struct RowScan;
  struct Group {
    Box box;
    std::int32_t pixel_count;
    std::int32_t next_merged, last_merged;  // the chain of groups that a root has taken in
  };
  // What is known of a row that was scanned.
  struct Row {
    std::vector<std::uint64_t> words;   // the pixels
    std::vector<std::uint64_t> begins;  // those at which a segment begins
    // The group of a segment, kept at its first pixel and at the first of each word it reaches
    // into.
    std::vector<std::int32_t> groups;

    bool is_set(std::int32_t x) const;
    std::int32_t group_of(std::int32_t x) const;
  };

  void reserve_row();
  bool take_over(const BitMask *mask);
  void clear_above();
  void find_events();
  void scan_row(std::int32_t y);
  std::int32_t root(std::int32_t group);
  void merge(std::int32_t small, std::int32_t large);
  void list_components();
  void complete(Component *component);

  std::int32_t width_, height_;
  std::vector<std::uint8_t> last_mask_;  // all bytes of its block; empty before the first
  Row above_, row_;
  // Events of the current row, left to right: where runs start and end, and where a run meets
  // another segment of the row above. Each list is closed by a value right of the picture.
  std::vector<std::int32_t> starts_, ends_, contacts_;
  std::vector<PixelRun> segments_;  // each a run, or the part of one that joined one group
  std::vector<Group> groups_;
  std::vector<std::int32_t> parents_;
  std::vector<std::int32_t> first_pixels_;  // of each group, among the pixels of all components
  std::vector<Component> components_;
  std::int32_t segment_count_ = 0;
  std::int32_t group_count_ = 0;
  std::size_t pixel_count_ = 0;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_COMPONENTS_H_
