#include "pentracker/open_blobs.h"

#include <algorithm>

namespace nox::pentracker {

namespace {

constexpr std::int32_t kNone = -1;

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
  const std::int32_t row = row_of_[at(index)];
  if (row == kNone) return;
  table_.set_taken(row, score);
  const float least = table_.least[at(row)];
  if (score < least * highest_score(table_.count[at(row)], table_.inverse_count[at(row)])) return;
  table_.taken[at(row)] = kClosed;
  row_of_[at(index)] = kNone;
  open_placeless_ -= least == 1.0F ? 1 : 0;
  ++left_;
}

void OpenBlobs::tidy() {
  if (left_ * 4 <= table_.size) return;
  std::int32_t kept = 0;
  for (std::int32_t row = 0; row < table_.size; ++row) {
    const std::int32_t index = index_of(row);
    if (row_of_[at(index)] == kNone) continue;
    if (kept != row) {
      table_.move(row, kept);
      index_[at(kept)] = index;
      row_of_[at(index)] = kept;
    }
    ++kept;
  }
  table_.resize(kept);
  left_ = 0;
}

std::int32_t OpenBlobs::row_from(std::int32_t index) const {
  const auto end = index_.begin() + table_.size;
  return static_cast<std::int32_t>(std::lower_bound(index_.begin(), end, index) - index_.begin());
}

LinkRows OpenBlobs::rows_in_a_row(std::int32_t index) const {
  constexpr std::int32_t kFew = 16;
  const std::int32_t begin = row_of_[at(index)];
  if (begin == kNone) return {0, 0};
  std::int32_t end = begin + 1;
  while (end < table_.size && end < begin + kFew && index_of(end) == index + (end - begin) &&
         row_of_[at(index_of(end))] == end) {
    ++end;
  }
  return {begin, end};
}

}  // namespace nox::pentracker
