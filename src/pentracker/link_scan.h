// Linking among up to some thousands of blobs: a look at all of them, many at a time.
#ifndef PENTRACKER_LINK_SCAN_H_
#define PENTRACKER_LINK_SCAN_H_

#include <cstdint>

#include "pentracker/blob_links.h"
#include "pentracker/link_table.h"

namespace nox::pentracker {

// Walks the list as the definition of the links does, but computes a score only where a bound says
// that it may be taken, and stops when no score can be higher.
class LinkScan {
 public:
  // Begins a frame; no blob of `earlier` has a successor yet.
  void start(BlobSpan earlier);

  // Links the next blob of the frame.
  void link(Blob *blob);

 private:
  void mark_taken(std::int32_t index, float score);

  BlobSpan earlier_{};
  LinkTable table_;
  std::int32_t first_open_ = 0;  // no blob before this one can be had any more
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_SCAN_H_
