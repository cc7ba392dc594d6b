#include "pentracker/open_blobs.h"

#include <cstddef>

#include "pentracker/at.h"

namespace nox::pentracker {

namespace {

constexpr std::int32_t kNone = -1;

}  // namespace

void OpenBlobs::build(BlobSpan earlier) {
  table_.resize(earlier.count);
  row_of_.resize(at(earlier.count));
  first_row_ = left_ = left_lately_ = open_placeless_ = 0;
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    table_.put(i, i, earlier.blobs[i]);
    row_of_[at(i)] = i;
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
  ++left_lately_;
}

bool OpenBlobs::has_left(std::int32_t row) const {
  return table_.taken[at(row)] == kClosed;
}

// New blobs come in the order of the picture, and with them the earlier ones leave: most of the
// rows to forget are among the first ones.
void OpenBlobs::tidy() {
  constexpr std::int32_t kMany = 32;
  if (left_lately_ < kMany) return;
  left_lately_ = 0;
  const bool all = 4 * left_ > table_.size - first_row_;
  forget_left_before(all ? table_.size : end_of_front());
}

// The front is as long as at least a quarter of its blobs have left.
std::int32_t OpenBlobs::end_of_front() const {
  constexpr std::int32_t kAhead = 32;
  std::int32_t end = first_row_;
  std::int32_t left = 0;
  for (std::int32_t row = first_row_; row < table_.size; ++row) {
    left += has_left(row) ? 1 : 0;
    const std::int32_t rows = row + 1 - first_row_;
    if (4 * left >= rows) end = row + 1;
    if (4 * left + kAhead < rows) break;
  }
  return end;
}

// The blobs before row `end` that have not left move up to it.
void OpenBlobs::forget_left_before(std::int32_t end) {
  std::int32_t kept = end;
  for (std::int32_t row = end - 1; row >= first_row_; --row) {
    if (has_left(row)) continue;
    table_.move(row, --kept);
    row_of_[at(table_.index[at(kept)])] = kept;
  }
  left_ -= kept - first_row_;
  first_row_ = kept;
}

LinkRows OpenBlobs::rows_in_a_row(std::int32_t index) const {
  constexpr std::int32_t kFew = 16;
  const std::int32_t begin = row_of_[at(index)];
  if (begin == kNone) return {0, 0};
  std::int32_t end = begin + 1;
  while (end < table_.size && end < begin + kFew && !has_left(end) &&
         table_.index[at(end)] == index + (end - begin)) {
    ++end;
  }
  return {begin, end};
}

}  // namespace nox::pentracker
