#include "pentracker/distant_blobs.h"

#include <algorithm>

#include "pentracker/at.h"

namespace nox::pentracker {

std::size_t DistantBlobs::Hash::operator()(const Key &key) const {
  constexpr std::size_t kMultiplier = 0x9E3779B1U;
  std::size_t hash = 0;
  for (const float part : {key.pixel_count, key.width, key.height}) {
    hash = hash * kMultiplier + static_cast<std::size_t>(part);
  }
  return hash;
}

void DistantBlobs::build(BlobSpan earlier, const LinkColumns *table) {
  table_ = table;
  rows_.open.reset(earlier.count);
  rows_.taken.assign(at(earlier.count + LinkColumns::kPadding), kClosed);
  open_placeless_ = static_cast<std::int32_t>(
      std::count(table->least.begin(), table->least.begin() + earlier.count, 1.0F));
  walks_.clear();
  for (std::int32_t i = 0; i < earlier.count; ++i) set_taken(i, earlier.blobs[i].successor_score);
}

void DistantBlobs::set_taken(std::int32_t index, float score) {
  const std::size_t i = at(index);
  const float least = table_->least[i];
  if (score < least * highest_score(table_->count[i], table_->inverse_count[i])) {
    rows_.taken[i] = score;
    return;
  }
  if (!rows_.open.is_open(index)) return;
  rows_.taken[i] = kClosed;
  rows_.open.close(index);
  open_placeless_ -= least == 1.0F ? 1 : 0;
}

// No score of a new blob of this shape that is distant is higher.
float DistantBlobs::highest(const BlobShape &shape) const {
  const float position = open_placeless_ > 0 ? 1.0F : kFarPosition;
  return position * highest_score(shape.count, shape.inverse_count);
}

void DistantBlobs::add_links(const LinkQuery &query, RisingLinks *links) {
  const std::int32_t limit = std::min(links->first_from_score(highest(query.shape)), table_->size);
  if (rows_.open.next(0) >= limit) return;
  Walk *const walk = &walks_[{query.shape.count, query.shape.width, query.shape.height}];
  mend(query.shape, limit, walk);
  for (const LinkCandidate &link : walk->links) {
    if (link.index >= limit) break;
    links->add(link);
  }
}

// Makes a walk right up to `limit`.
void DistantBlobs::mend(const BlobShape &shape, std::int32_t limit, Walk *walk) {
  const float enough = highest(shape);
  std::vector<LinkCandidate> &links = walk->links;
  mended_.clear();
  std::size_t next = 0;
  while (next < links.size() && links[next].index < limit) {
    const LinkCandidate link = links[next++];
    const float best = mended_.empty() ? 0.0F : mended_.back().score;
    if (link.score <= best) continue;
    if (link.score > rows_.taken[at(link.index)]) {
      mended_.push_back(link);
    } else {
      const std::int32_t end = next < links.size() ? links[next].index : walk->end;
      go_on(shape, {link.index + 1, end}, std::min(link.score, enough));
    }
  }
  if (next == links.size() && walk->end < limit) {
    walk->end = go_on(shape, {walk->end, limit}, enough);
  }
  mended_.insert(mended_.end(), links.begin() + static_cast<std::ptrdiff_t>(next), links.end());
  links.swap(mended_);
}

// Walks on over `rows` until a score of `enough`; returns where it ends.
std::int32_t DistantBlobs::go_on(const BlobShape &shape, LinkRows rows, float enough) {
  float best = mended_.empty() ? 0.0F : mended_.back().score;
  while (best < enough && rows.begin < rows.end) {
    const LinkCandidate link = next_distant(*table_, rows_, shape, rows, best);
    rows.begin = link.index + 1;
    if (link.index == rows.end) break;
    mended_.push_back(link);
    best = link.score;
  }
  return std::min(rows.begin, rows.end);
}

}  // namespace nox::pentracker
