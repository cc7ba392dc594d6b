#include "pentracker/crowd_linker.h"

namespace nox::pentracker {

void CrowdLinker::start(BlobSpan earlier) {
  earlier_ = earlier;
  first_ = 0;
  near_is_built_ = false;
  open_.build(earlier);
  links_.resize(static_cast<std::size_t>(earlier.count));
}

void CrowdLinker::link(Blob *blob) {
  open_.tidy();
  walk_ = {open_.first_row(), 0.0F, links_.data()};
  if (first_ < earlier_.count) find_links(LinkQuery(*blob));
  take_links(blob);
}

void CrowdLinker::find_links(const LinkQuery &query) {
  const float highest = highest_score(query.shape.count, query.shape.inverse_count);
  // Where nothing moves, the first one is the right one.
  const float first = match_score(earlier_.blobs[first_], query);
  if (first >= highest) return add({first_, first});
  const LinkRows leading = open_.rows_in_a_row(first_);
  const std::int32_t from = first_ + (leading.end - leading.begin);
  if (from != first_) {
    walk_.row = leading.begin;
    walk_all(open_.table(), query, from, highest, &walk_);
    if (walk_.best >= highest) return;
  }
  if (!near_is_built_) near_.build(earlier_);
  near_is_built_ = true;
  const float distant = open_.highest(query.shape);
  const std::vector<LinkCandidate> &picked = near_.pick(query, walk_.best, from);
  for (auto near = picked.rbegin(); near != picked.rend(); ++near) {
    walk_distant(open_.table(), query, near->index, distant, &walk_);
    if (near->score > walk_.best) add(*near);
  }
  walk_distant(open_.table(), query, earlier_.count, distant, &walk_);
}

void CrowdLinker::add(LinkCandidate link) {
  *walk_.next++ = link;
  walk_.best = link.score;
}

void CrowdLinker::take_links(Blob *blob) {
  LinkTaker taker(blob);
  for (const LinkCandidate *link = links_.data(); link != walk_.next; ++link) {
    taker.take(earlier_.blobs + link->index, link->score);
    if (near_is_built_) near_.set_taken(link->index, link->score);
    open_.set_taken(link->index, link->score);
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
