// The looks at columns of earlier blobs that must be quick.
#ifndef PENTRACKER_LINK_KERNELS_H_
#define PENTRACKER_LINK_KERNELS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pentracker/link_columns.h"
#include "pentracker/open_rows.h"

namespace nox::pentracker {

// A blob that a new blob may be linked to, and how well it fits.
struct LinkCandidate {
  std::int32_t index;
  float score;
};

// Rows begin to end - 1 of a table.
struct LinkRows {
  std::int32_t begin, end;
};

// Writes to `out` the rows, as indices, that may score above `above` and above what they are taken
// for, and whose distance from the new blob may count, each with a bound that its score does not
// surpass; returns how many there are. There must be room for as many as there are rows.
std::int32_t likely_near(const LinkColumns &columns, const LinkQuery &query, float above,
                         LinkRows rows, LinkCandidate *out);

// A walk over a table, and what it has taken so far: each blob that scores above all before it and
// above what it is taken for, with its row as index and its exact score.
struct LinkWalk {
  std::int32_t row;     // where it goes on
  float best;           // the last score
  LinkCandidate *next;  // where the next one that is taken goes; there must be room for all rows
};

// Walks on over the rows below `limit`; stops early at a score of `enough`.
void walk_all(const LinkColumns &columns, const LinkQuery &query, std::int32_t limit, float enough,
              LinkWalk *walk);

// What a table's rows are as distant blobs.
struct DistantRows {
  OpenRows open;             // to distant ones
  std::vector<float> taken;  // the score of the successor, kClosed if the row is not open
};

// The same, for a new blob far from all of them, over the open rows.
void walk_distant(const LinkColumns &columns, const DistantRows &distant, const BlobShape &shape,
                  std::int32_t limit, float enough, LinkWalk *walk);

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_KERNELS_H_
