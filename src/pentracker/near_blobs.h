// Earlier blobs by the place at which they are expected in the current frame.
#ifndef PENTRACKER_NEAR_BLOBS_H_
#define PENTRACKER_NEAR_BLOBS_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"
#include "pentracker/link_columns.h"
#include "pentracker/link_kernels.h"

namespace nox::pentracker {

class NearBlobs {
 public:
  // Takes in the blobs that have an expected place, and the scores of their successors so far.
  void build(BlobSpan earlier);

  // Notes that a successor with this score was found for blob `index`.
  void set_taken(std::int32_t index, float score);

  // Of the blobs from `from` on in the list that are near enough for their distance to count, and
  // that fit the new blob better than they fit their successors, picks those that score above
  // `best` and above all before them. The last comes first. Valid until the next call.
  const std::vector<LinkCandidate> &pick(const LinkQuery &query, float best, std::int32_t from);

 private:
  struct Likely {
    std::int32_t index, row;
    float score;  // or a bound that it does not surpass
    bool exact;

    bool comes_before(const Likely &other) const;
  };

  std::int32_t cell_of(float x, float y) const;
  void place(BlobSpan earlier);
  void find(const LinkQuery &query, float best, std::int32_t from);
  Likely take_highest(const LinkQuery &query);

  std::int32_t columns_of_cells_ = 0, rows_of_cells_ = 0;
  std::vector<std::int32_t> cells_;   // of each blob: its cell, or none
  std::vector<std::int32_t> row_of_;  // of each blob: its row in the table, or none
  std::vector<std::int32_t> first_;   // of each cell: its first row; one more closes the last
  LinkColumns table_;                 // cell by cell
  std::vector<LinkCandidate> found_;
  std::vector<Likely> likely_;
  std::vector<LinkCandidate> picked_;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_NEAR_BLOBS_H_
