// The look at a table of earlier blobs that must be quick.
#ifndef PENTRACKER_LINK_TABLE_KERNELS_H_
#define PENTRACKER_LINK_TABLE_KERNELS_H_

#include <cstdint>

#include "pentracker/blob_links.h"
#include "pentracker/link_table.h"

namespace nox::pentracker {

// What a new blob brings to the look.
struct LinkQuery {
  float x, y;
  BlobShape shape;
  float best;  // the score to surpass
};

// The first blob from `from` on that may score above `best` and above what it is taken for; `count`
// when there is none. The bound that decides is cheap and a little too high: it holds for every
// blob that does surpass them, and for some that do not.
std::int32_t first_likely(const LinkTable &table, const LinkQuery &query, std::int32_t from);

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_TABLE_KERNELS_H_
