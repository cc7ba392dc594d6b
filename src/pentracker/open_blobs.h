// The earlier blobs, in list order, that a new blob far from where they are expected may be linked
// to.
#ifndef PENTRACKER_OPEN_BLOBS_H_
#define PENTRACKER_OPEN_BLOBS_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"
#include "pentracker/link_columns.h"
#include "pentracker/link_kernels.h"

namespace nox::pentracker {

// Distance counts the same for all blobs that are far, and not at all for those that have no
// expected place. So most blobs are soon taken by a near one, closed to distant ones, and leave.
class OpenBlobs {
 public:
  // Takes in the blobs, none of which has a successor yet.
  void build(BlobSpan earlier);

  // Notes that a successor with this score was found for blob `index`.
  void set_taken(std::int32_t index, float score);

  // Forgets rows of blobs that have left.
  void tidy();

  // No score of a new blob of this shape that is distant is higher.
  float highest(const BlobShape &shape) const {
    const float position = open_placeless_ > 0 ? 1.0F : kFarPosition;
    return position * highest_score(shape.count, shape.inverse_count);
  }

  // The rows of the table from the first one on are in use.
  const LinkColumns &table() const { return table_; }
  std::int32_t first_row() const { return first_row_; }
  // The rows of blob `index` and of those right after it in the list, as far as all are open, but
  // of a few at most; none if it has left.
  LinkRows rows_in_a_row(std::int32_t index) const;

 private:
  bool has_left(std::int32_t row) const;
  std::int32_t end_of_front() const;
  void forget_left_before(std::int32_t end);

  LinkColumns table_;  // where kClosed also marks a blob that has left
  std::int32_t first_row_ = 0;
  std::vector<std::int32_t> row_of_;  // of each blob that has not left
  std::int32_t left_ = 0;             // rows in use of blobs that have left
  std::int32_t left_lately_ = 0;      // since the last tidying
  std::int32_t open_placeless_ = 0;   // blobs without an expected place
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_OPEN_BLOBS_H_
