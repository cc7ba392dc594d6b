#include "pentracker/crowd_linker.h"

#include <algorithm>

#include "pentracker/link_kernels.h"

namespace nox::pentracker {

namespace {

// So many blobs are looked at before the others are sorted out.
constexpr std::int32_t kLeading = 16;

}  // namespace

void CrowdLinker::start(BlobSpan earlier) {
  earlier_ = earlier;
  first_ = 0;
  is_sorted_out_ = false;
  table_.resize(earlier.count);
  for (std::int32_t i = 0; i < earlier.count; ++i) table_.put(i, i, earlier.blobs[i]);
}

void CrowdLinker::link(Blob *blob) {
  links_.clear();
  if (first_ < earlier_.count) find_links(LinkQuery(*blob));
  take_links(blob);
}

void CrowdLinker::find_links(const LinkQuery &query) {
  const float highest = highest_score(query.shape.count, query.shape.inverse_count);
  // Where nothing moves, the first one is the right one.
  const float first = match_score(earlier_.blobs[first_], query);
  if (first >= highest) return links_.add({first_, first});
  const std::int32_t from = std::min(first_ + kLeading, earlier_.count);
  LinkCandidate leading[kLeading];
  LinkWalk walk{first_, 0.0F, leading};
  walk_all(table_, query, from, highest, &walk);
  for (const LinkCandidate *link = leading; link != walk.next; ++link) links_.add(*link);
  if (walk.best >= highest) return;
  sort_out();
  for (const LinkCandidate &near : near_.pick(query, walk.best, from)) links_.add(near);
  distant_.add_links(query, &links_);
}

void CrowdLinker::sort_out() {
  if (is_sorted_out_) return;
  is_sorted_out_ = true;
  near_.build(earlier_);
  distant_.build(earlier_, &table_);
}

void CrowdLinker::take_links(Blob *blob) {
  LinkTaker taker(blob);
  for (const LinkCandidate &link : links_.links()) {
    taker.take(earlier_.blobs + link.index, link.score);
    table_.set_taken(link.index, link.score);
    if (!is_sorted_out_) continue;
    near_.set_taken(link.index, link.score);
    distant_.set_taken(link.index, link.score);
  }
  taker.finish();
  while (first_ < earlier_.count && is_closed(first_)) ++first_;
}

bool CrowdLinker::is_closed(std::int32_t index) const {
  const Blob &blob = earlier_.blobs[index];
  const auto count = static_cast<float>(blob.pixel_count);
  return blob.successor_score >= highest_score(count, 1.0F / count);
}

}  // namespace nox::pentracker
