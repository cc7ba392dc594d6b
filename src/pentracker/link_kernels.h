// The looks at columns of earlier blobs that must be quick.
#ifndef PENTRACKER_LINK_KERNELS_H_
#define PENTRACKER_LINK_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "pentracker/link_columns.h"

namespace nox::pentracker {

// A row whose blob a new blob may be linked to, and how well it fits.
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

// Walks over the rows, first to last, and writes to `out` each that scores above all before it,
// above `*best` and above what it is taken for, with its exact score; returns how many these are.
// The walk ends early at a score of `enough`. `*best` becomes the last score. There must be room
// for as many as there are rows.
std::int32_t walk_all(const LinkColumns &columns, const LinkQuery &query, float enough,
                      LinkRows rows, float *best, LinkCandidate *out);

// The same walk where no blob that is near scores above `*best`, or above any that is not: it need
// not ask how near they are.
std::int32_t walk_distant(const LinkColumns &columns, const LinkQuery &query, float enough,
                          LinkRows rows, float *best, LinkCandidate *out);

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_KERNELS_H_
