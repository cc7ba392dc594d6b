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
  link_count_ = 0;
  best_ = 0.0F;
  if (first_ < earlier_.count) find_links(LinkQuery(*blob));
  take_links(blob);
}

void CrowdLinker::find_links(const LinkQuery &query) {
  const float highest = highest_score(query.shape.count, query.shape.inverse_count);
  // Where nothing moves, the first one is the right one.
  const float first = match_score(earlier_.blobs[first_], query);
  if (first >= highest && first > earlier_.blobs[first_].successor_score) {
    links_[link_count_++] = {first_, first};
    return;
  }
  const LinkRows leading = open_.rows_in_a_row(first_);
  walk(walk_all, query, highest, leading);
  if (best_ >= highest) return;
  if (!near_is_built_) near_.build(earlier_);
  near_is_built_ = true;
  const float distant = open_.highest(query.shape);
  std::int32_t row = leading.end;
  const std::vector<LinkCandidate> &picked =
      near_.pick(query, best_, first_ + leading.end - leading.begin);
  for (auto near = picked.rbegin(); near != picked.rend(); ++near) {
    const std::int32_t end = open_.row_from(near->index);
    walk(walk_distant, query, distant, {row, end});
    row = end;
    if (near->score <= best_) continue;
    links_[link_count_++] = *near;
    best_ = near->score;
  }
  walk(walk_distant, query, distant, {row, open_.table().size});
}

// Adds the links that a walk over rows of the open blobs finds; none scores above `enough`.
void CrowdLinker::walk(Look look, const LinkQuery &query, float enough, LinkRows rows) {
  if (best_ >= enough) return;
  LinkCandidate *links = links_.data() + link_count_;
  const std::int32_t count = look(open_.table(), query, enough, rows, &best_, links);
  for (std::int32_t i = 0; i < count; ++i) links[i].index = open_.index_of(links[i].index);
  link_count_ += static_cast<std::size_t>(count);
}

void CrowdLinker::take_links(Blob *blob) {
  LinkTaker taker(blob);
  for (std::size_t i = 0; i < link_count_; ++i) {
    const auto [index, score] = links_[i];
    taker.take(earlier_.blobs + index, score);
    if (near_is_built_) near_.set_taken(index, score);
    open_.set_taken(index, score);
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
