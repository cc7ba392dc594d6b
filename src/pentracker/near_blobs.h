// Earlier blobs by the place at which they are expected in the current frame.
#ifndef PENTRACKER_NEAR_BLOBS_H_
#define PENTRACKER_NEAR_BLOBS_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"

namespace nox::pentracker {

// A blob of the frame before that a new blob may be linked to, and how well it fits.
struct LinkCandidate {
  std::int32_t index;
  float score;
};

// Candidates are wanted only from a place in the list on, and only with a score above one.
struct LinkWanted {
  std::int32_t from;
  float above;
};

class NearBlobs {
 public:
  // Takes in the blobs that have an expected place, with the scores of their successors so far.
  void build(BlobSpan earlier);

  // Notes that a successor with this score was found for blob `index`.
  void set_score(std::int32_t index, float score);

  // Appends every blob near enough for its distance to count that fits `blob` better than its
  // successor does.
  void find(const Blob &blob, const BlobShape &shape, LinkWanted wanted,
            std::vector<LinkCandidate> *out) const;

 private:
  struct Entry {
    float x, y;  // where the blob is expected
    float count, width, height;
    float score;  // of its successor
    std::int32_t index;
  };

  std::int32_t cell_of(float x, float y) const;
  void place(BlobSpan earlier);

  std::int32_t columns_ = 0, rows_ = 0;
  std::vector<std::int32_t> cells_;  // of each blob: its cell, kNowhere without one
  std::vector<std::int32_t> slots_;  // of each blob: its entry, kNowhere without one
  std::vector<std::int32_t> first_;  // of each cell: its first entry; one more closes the last
  std::vector<Entry> entries_;       // cell by cell, in list order within a cell
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_NEAR_BLOBS_H_
