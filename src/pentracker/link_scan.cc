#include "pentracker/link_scan.h"

#include <cstddef>
#include <limits>

#include "pentracker/link_table_kernels.h"

namespace nox::pentracker {

namespace {

constexpr float kClosed = std::numeric_limits<float>::infinity();

}  // namespace

void LinkScan::start(BlobSpan earlier) {
  earlier_ = earlier;
  table_.fill(earlier);
  first_open_ = 0;
}

void LinkScan::link(Blob *blob) {
  LinkQuery query{blob->centre_x, blob->centre_y, BlobShape(*blob), 0.0F};
  const float highest = highest_score(query.shape.count, query.shape.inverse_count);
  LinkTaker taker(blob);
  std::int32_t i = first_likely(table_, query, first_open_);
  while (i < earlier_.count) {
    Blob *candidate = earlier_.blobs + i;
    const float score = match_score(*candidate, *blob, query.shape);
    if (taker.wants(*candidate, score)) {
      taker.take(candidate, score);
      mark_taken(i, score);
      if (score >= highest) break;
      query.best = score;
    }
    i = first_likely(table_, query, i + 1);
  }
  taker.finish();
}

void LinkScan::mark_taken(std::int32_t index, float score) {
  const auto i = static_cast<std::size_t>(index);
  table_.taken[i] =
      score >= highest_score(table_.pixels[i], table_.inverse_pixels[i]) ? kClosed : score;
  while (first_open_ < earlier_.count &&
         table_.taken[static_cast<std::size_t>(first_open_)] == kClosed) {
    ++first_open_;
  }
}

}  // namespace nox::pentracker
