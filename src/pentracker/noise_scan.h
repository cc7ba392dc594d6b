// The scan for masks of many short runs, such as noise.
#ifndef PENTRACKER_NOISE_SCAN_H_
#define PENTRACKER_NOISE_SCAN_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "masks/bitmask.h"
#include "pentracker/pixel_groups.h"

namespace nox::pentracker {

// Where hardly a run resembles the one above it, every branch on their shapes is a toss-up. Word
// operations find the few places of a row at which anything is to be decided: where runs start and
// end, and where they meet a segment of the row above, a segment being the part of a run that
// joined one group.
class NoiseScan {
 public:
  NoiseScan(std::int32_t width, std::int32_t height);

  // Fills `groups` with the pixels of `mask`.
  void scan(const BitMask *mask, PixelGroups *groups);

 private:
  struct RowState;
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

  void find_events(const std::uint8_t *row);
  void scan_row(std::int32_t y, PixelGroups *groups);

  std::int32_t width_, height_;
  Row above_, row_;
  // Events of the current row, left to right: where runs start and end, and where a run meets
  // another segment of the row above. Each list is closed by a value right of the picture.
  std::vector<std::int32_t> starts_, ends_, contacts_;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_NOISE_SCAN_H_
