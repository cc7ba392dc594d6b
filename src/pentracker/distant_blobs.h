// The earlier blobs that a new blob far from where they are expected may be linked to.
#ifndef PENTRACKER_DISTANT_BLOBS_H_
#define PENTRACKER_DISTANT_BLOBS_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"
#include "pentracker/link_columns.h"
#include "pentracker/link_kernels.h"
#include "pentracker/open_rows.h"
#include "pentracker/rising_links.h"

namespace nox::pentracker {

// Distance counts the same for all blobs that are far, and not at all for those that have no
// expected place. So what a walk in list order takes for a distant blob follows from its shape
// alone, and the walk for the next blob of that shape differs only where one has been taken since:
// it is kept and mended. And most blobs are soon taken by a near one, closed to distant ones.
class DistantBlobs {
 public:
  DistantBlobs();

  // Takes in the blobs of `table`, which has them in list order and outlives the frame, and the
  // scores of their successors so far.
  void build(BlobSpan earlier, const LinkColumns *table);

  // Notes that a successor with this score was found for blob `index`.
  void set_taken(std::int32_t index, float score);

  // Adds the links of a new blob to distant ones, given its links to all that are near.
  void add_links(const LinkQuery &query, RisingLinks *links);

 private:
  struct Sizes {
    float count, width, height;
    bool operator==(const Sizes &) const = default;
  };
  // No open blob behind a link and before the next one (behind the last: before `end`; in front of
  // the first: at all) scores higher than that link. A link may be taken by now.
  struct Walk {
    Sizes sizes{};  // of the new blob
    std::vector<LinkCandidate> links;
    std::int32_t end = 0;
  };

  Walk *walk_of(const BlobShape &shape);
  float highest(const BlobShape &shape) const;
  void mend(const BlobShape &shape, std::int32_t limit, Walk *walk);

  const LinkColumns *table_ = nullptr;
  DistantRows rows_;
  std::int32_t open_placeless_ = 0;    // blobs without an expected place that are open
  std::vector<Walk> walks_;            // each at the hash of its sizes, one for another
  std::vector<LinkCandidate> mended_;  // of the walk at hand
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_DISTANT_BLOBS_H_
