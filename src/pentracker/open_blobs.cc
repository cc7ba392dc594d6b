#include "pentracker/open_blobs.h"

#include <algorithm>

namespace nox::pentracker {

namespace {

std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

void OpenBlobs::build(BlobSpan earlier) {
  table_.resize(earlier.count);
  index_.resize(at(earlier.count));
  row_of_.resize(at(earlier.count));
  left_ = open_placeless_ = 0;
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    table_.put(i, earlier.blobs[i]);
    index_[at(i)] = row_of_[at(i)] = i;
    open_placeless_ += earlier.blobs[i].previous == nullptr ? 1 : 0;
  }
}

void OpenBlobs::set_taken(std::int32_t index, float score) {
  const std::int32_t row = row_from(index);
  if (!is_open(row) || index_of(row) != index) return;
  table_.set_taken(row, score);
  const float least = table_.least[at(row)];
  if (score < least * highest_score(table_.count[at(row)], table_.inverse_count[at(row)])) return;
  table_.taken[at(row)] = kClosed;
  open_placeless_ -= least == 1.0F ? 1 : 0;
  ++left_;
}

void OpenBlobs::tidy() {
  if (left_ * 4 < table_.size) return;
  std::int32_t kept = 0;
  for (std::int32_t row = 0; row < table_.size; ++row) {
    if (!is_open(row)) continue;
    table_.move(row, kept);
    index_[at(kept++)] = index_of(row);
  }
  table_.resize(kept);
  left_ = 0;
  auto first_without = row_of_.begin();
  for (std::int32_t row = 0; row < kept; ++row) {
    const auto behind = row_of_.begin() + index_of(row) + 1;
    std::fill(first_without, behind, row);
    first_without = behind;
  }
  std::fill(first_without, row_of_.end(), kept);
}

bool OpenBlobs::is_open(std::int32_t row) const {
  return table_.taken[at(row)] != kClosed;
}

LinkRows OpenBlobs::rows_in_a_row(std::int32_t index) const {
  constexpr std::int32_t kFew = 16;
  const std::int32_t begin = row_from(index);
  std::int32_t end = begin;
  while (end < table_.size && end < begin + kFew && is_open(end) &&
         index_of(end) == index + (end - begin)) {
    ++end;
  }
  return {begin, end};
}

}  // namespace nox::pentracker
