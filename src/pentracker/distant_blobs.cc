#include "pentracker/distant_blobs.h"

#include <algorithm>

#include "pentracker/at.h"

namespace nox::pentracker {

namespace {

// Walks that are kept. One that is lost to another of the same hash costs no more than time.
constexpr std::size_t kWalks = 2048;

}  // namespace

DistantBlobs::DistantBlobs() : walks_(kWalks) {}

void DistantBlobs::build(BlobSpan earlier, const LinkColumns *table) {
  table_ = table;
  rows_.open.reset(earlier.count);
  rows_.taken.assign(at(earlier.count + LinkColumns::kPadding), kClosed);
  open_placeless_ = static_cast<std::int32_t>(
      std::count(table->least.begin(), table->least.begin() + earlier.count, 1.0F));
  for (Walk &walk : walks_) walk.sizes = {};
  mended_.resize(at(earlier.count));
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
  Walk *const walk = walk_of(query.shape);
  mend(query.shape, limit, walk);
  for (const LinkCandidate &link : walk->links) {
    if (link.index >= limit) break;
    links->add(link);
  }
}

DistantBlobs::Walk *DistantBlobs::walk_of(const BlobShape &shape) {
  constexpr std::size_t kMultiplier = 0x9E3779B1U;
  std::size_t hash = 0;
  for (const float size : {shape.count, shape.width, shape.height}) {
    hash = (hash + static_cast<std::size_t>(size)) * kMultiplier;
  }
  Walk *const walk = &walks_[hash / kWalks % kWalks];
  const Sizes sizes{shape.count, shape.width, shape.height};
  if (walk->sizes != sizes) {
    walk->sizes = sizes;
    walk->links.clear();
    walk->end = 0;
  }
  return walk;
}

// Makes a walk right up to `limit`.
void DistantBlobs::mend(const BlobShape &shape, std::int32_t limit, Walk *walk) {
  const float enough = highest(shape);
  std::vector<LinkCandidate> &links = walk->links;
  LinkWalk mended{0, 0.0F, mended_.data()};
  std::size_t next = 0;
  while (next < links.size() && links[next].index < limit) {
    const LinkCandidate link = links[next++];
    if (link.score <= mended.best) continue;
    if (link.score > rows_.taken[at(link.index)]) {
      *mended.next++ = link;
      mended.best = link.score;
      continue;
    }
    const std::int32_t end = next < links.size() ? links[next].index : walk->end;
    mended.row = link.index + 1;
    walk_distant(*table_, rows_, shape, end, std::min(link.score, enough), &mended);
  }
  if (next == links.size() && walk->end < limit) {
    mended.row = walk->end;
    walk_distant(*table_, rows_, shape, limit, enough, &mended);
    walk->end = mended.row;
  }
  const auto passed = links.begin() + static_cast<std::ptrdiff_t>(next);
  links.insert(links.erase(links.begin(), passed), mended_.data(), mended.next);
}

}  // namespace nox::pentracker
