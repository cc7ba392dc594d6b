#include "pentracker/near_blobs.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

#include "pentracker/at.h"

namespace nox::pentracker {

namespace {

constexpr std::int32_t kNone = -1;

// Distance counts up to 19 pixels; cells are a little wider, so that the cell of a new blob and the
// eight around it hold all that matters. One row and column of cells lies outside the picture on
// each side, for blobs that are expected there.
constexpr std::int32_t kCell = 20;

}  // namespace

std::int32_t NearBlobs::cell_of(float x, float y) const {
  constexpr auto kSize = static_cast<float>(kCell);
  const float right = static_cast<float>(columns_of_cells_ * kCell) - kSize;
  const float bottom = static_cast<float>(rows_of_cells_ * kCell) - kSize;
  if (!(x >= -kSize && y >= -kSize && x < right && y < bottom)) return kNone;
  const std::int32_t column = static_cast<std::int32_t>(x + kSize) / kCell;
  const std::int32_t row = static_cast<std::int32_t>(y + kSize) / kCell;
  return row * columns_of_cells_ + column;
}

void NearBlobs::build(BlobSpan earlier) {
  columns_of_cells_ = earlier.blobs->mask_width / kCell + 3;
  rows_of_cells_ = earlier.blobs->mask_height / kCell + 3;
  cells_.assign(at(earlier.count), kNone);
  row_of_.assign(at(earlier.count), kNone);
  first_.assign(at(columns_of_cells_ * rows_of_cells_ + 1), 0);
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    const Blob &blob = earlier.blobs[i];
    if (blob.previous == nullptr) continue;
    cells_[at(i)] = cell_of(blob.predicted_x, blob.predicted_y);
    if (cells_[at(i)] != kNone) ++first_[at(cells_[at(i)] + 1)];
  }
  for (std::size_t cell = 1; cell < first_.size(); ++cell) first_[cell] += first_[cell - 1];
  place(earlier);
}

// Puts each blob that has a cell behind those already in it.
void NearBlobs::place(BlobSpan earlier) {
  const std::int32_t rows = first_.back();
  table_.resize(rows);
  found_.resize(at(rows));
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    if (cells_[at(i)] == kNone) continue;
    const std::int32_t row = row_of_[at(i)] = first_[at(cells_[at(i)])]++;
    table_.put(row, i, earlier.blobs[i]);
  }
  // Filling has moved every start to that of the next cell.
  std::copy_backward(first_.begin(), first_.end() - 1, first_.end());
  first_.front() = 0;
}

void NearBlobs::set_taken(std::int32_t index, float score) {
  if (row_of_[at(index)] != kNone) table_.set_taken(row_of_[at(index)], score);
}

void NearBlobs::find(const LinkQuery &query, float best, std::int32_t from) {
  likely_.clear();
  const std::int32_t centre = cell_of(query.x, query.y);
  for (std::int32_t cell : {centre - columns_of_cells_, centre, centre + columns_of_cells_}) {
    const LinkRows rows{first_[at(cell - 1)], first_[at(cell + 2)]};
    const std::int32_t count = likely_near(table_, query, best, rows, found_.data());
    for (std::int32_t i = 0; i < count; ++i) {
      const LinkCandidate &found = found_[at(i)];
      const std::int32_t index = table_.index[at(found.index)];
      if (index >= from) likely_.push_back({index, found.index, found.score, false});
    }
  }
}

// The higher score comes first; of equal ones a bound, then the blob that stands first in the list.
inline bool NearBlobs::Likely::comes_before(const Likely &other) const {
  if (score != other.score) return score > other.score;
  if (exact != other.exact) return other.exact;
  return index < other.index;
}

// Takes the blob with the highest score out of the likely ones; its bounds are replaced by exact
// scores until one of these leads.
NearBlobs::Likely NearBlobs::take_highest(const LinkQuery &query) {
  for (;;) {
    Likely *highest = likely_.data();
    for (Likely &other : likely_) {
      if (other.comes_before(*highest)) highest = &other;
    }
    if (highest->exact) return *highest;
    highest->score = table_.score(highest->row, query);
    highest->exact = true;
    // The bound was too high: no match after all.
    if (highest->score <= table_.taken[at(highest->row)]) highest->score = 0.0F;
  }
}

const std::vector<LinkCandidate> &NearBlobs::pick(const LinkQuery &query, float best,
                                                  std::int32_t from) {
  picked_.clear();
  find(query, best, from);
  while (!likely_.empty()) {
    // It is the highest of all; the one picked next is the highest of those that stand before it.
    const Likely highest = take_highest(query);
    if (highest.score <= best) break;
    picked_.push_back({highest.index, highest.score});
    std::erase_if(likely_, [&](const Likely &other) { return other.index >= highest.index; });
  }
  return picked_;
}

}  // namespace nox::pentracker
