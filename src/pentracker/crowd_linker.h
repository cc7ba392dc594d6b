// Linking among many blobs without comparing each with each.
#ifndef PENTRACKER_CROWD_LINKER_H_
#define PENTRACKER_CROWD_LINKER_H_

#include <cstdint>

#include "pentracker/blob_links.h"
#include "pentracker/distant_blobs.h"
#include "pentracker/link_columns.h"
#include "pentracker/near_blobs.h"
#include "pentracker/rising_links.h"

namespace nox::pentracker {

// Gives the links that a walk over all earlier blobs would give: of the blobs that it meets in list
// order, each one that scores higher than those before it.
//
// It begins with the first few blobs that can still be had: where little moves, one of them is the
// right one and cannot be surpassed. Of the others, those that are expected near the new blob are
// picked out with the help of a grid, and distant ones by their shapes.
class CrowdLinker {
 public:
  // Begins a frame; no blob of `earlier` has a successor yet.
  void start(BlobSpan earlier);

  // Links the next blob of the frame.
  void link(Blob *blob);

 private:
  void find_links(const LinkQuery &query);
  void sort_out();
  void take_links(Blob *blob);
  bool is_closed(std::int32_t index) const;

  BlobSpan earlier_{};
  LinkColumns table_;       // of all blobs, in list order
  std::int32_t first_ = 0;  // all blobs before this one are closed to any other
  bool is_sorted_out_ = false;
  NearBlobs near_;
  DistantBlobs distant_;
  RisingLinks links_;  // of the current blob
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_CROWD_LINKER_H_
