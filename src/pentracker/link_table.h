// The earlier blobs of a frame as columns of numbers.
#ifndef PENTRACKER_LINK_TABLE_H_
#define PENTRACKER_LINK_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"

namespace nox::pentracker {

// Rows behind the last blob, which fit nothing: a vector may reach over the end.
inline constexpr std::size_t kLinkTablePadding = 64;

struct LinkTable {
  // Takes in the blobs of a frame, none of which has a successor yet.
  void fill(BlobSpan earlier);

  std::int32_t count = 0;
  std::vector<float> x, y;    // where the blob is expected
  std::vector<float> fading;  // how much a pixel of distance takes from its score, at least
  std::vector<float> pixels, width, height;
  std::vector<float> inverse_pixels, inverse_width, inverse_height;
  std::vector<float>
      taken;  // the score of its successor; beyond every score when none can be higher
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_TABLE_H_
