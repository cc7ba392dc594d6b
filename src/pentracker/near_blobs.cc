#include "pentracker/near_blobs.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

namespace nox::pentracker {

namespace {

constexpr std::int32_t kNowhere = -1;

// Distance counts up to 19 pixels; cells are a little wider, so that the cell of a new blob and the
// eight around it hold all that matters. One row and column of cells lies outside the picture on
// each side, for blobs that are expected there.
constexpr std::int32_t kCell = 20;

std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

std::int32_t NearBlobs::cell_of(float x, float y) const {
  constexpr auto kSize = static_cast<float>(kCell);
  const float right = static_cast<float>(columns_ * kCell) - kSize;
  const float bottom = static_cast<float>(rows_ * kCell) - kSize;
  if (!(x >= -kSize && y >= -kSize && x < right && y < bottom)) return kNowhere;
  const std::int32_t column = (static_cast<std::int32_t>(x + kSize)) / kCell;
  const std::int32_t row = (static_cast<std::int32_t>(y + kSize)) / kCell;
  return row * columns_ + column;
}

void NearBlobs::build(BlobSpan earlier) {
  columns_ = earlier.blobs->mask_width / kCell + 3;
  rows_ = earlier.blobs->mask_height / kCell + 3;
  cells_.assign(at(earlier.count), kNowhere);
  slots_.assign(at(earlier.count), kNowhere);
  first_.assign(at(columns_ * rows_ + 1), 0);
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    const Blob &blob = earlier.blobs[i];
    if (blob.previous == nullptr) continue;
    cells_[at(i)] = cell_of(blob.predicted_x, blob.predicted_y);
    if (cells_[at(i)] != kNowhere) ++first_[at(cells_[at(i)] + 1)];
  }
  for (std::size_t cell = 1; cell < first_.size(); ++cell) first_[cell] += first_[cell - 1];
  place(earlier);
}

// Puts each blob that has a cell behind those already in it.
void NearBlobs::place(BlobSpan earlier) {
  entries_.resize(at(first_.back()));
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    const std::int32_t cell = cells_[at(i)];
    if (cell == kNowhere) continue;
    const Blob &blob = earlier.blobs[i];
    const std::int32_t slot = first_[at(cell)]++;
    slots_[at(i)] = slot;
    entries_[at(slot)] = {blob.predicted_x,
                          blob.predicted_y,
                          static_cast<float>(blob.pixel_count),
                          static_cast<float>(blob.width),
                          static_cast<float>(blob.height),
                          blob.successor_score,
                          i};
  }
  // Filling has moved every start to that of the next cell.
  std::copy_backward(first_.begin(), first_.end() - 1, first_.end());
  first_.front() = 0;
}

void NearBlobs::set_score(std::int32_t index, float score) {
  if (slots_[at(index)] != kNowhere) entries_[at(slots_[at(index)])].score = score;
}

void NearBlobs::find(const Blob &blob, const BlobShape &shape, LinkWanted wanted,
                     std::vector<LinkCandidate> *out) const {
  constexpr auto kReach = static_cast<float>(kCell * kCell);
  const std::int32_t centre = cell_of(blob.centre_x, blob.centre_y);
  for (std::int32_t cell : {centre - columns_, centre, centre + columns_}) {
    for (std::int32_t slot = first_[at(cell - 1)]; slot < first_[at(cell + 2)]; ++slot) {
      const Entry &entry = entries_[at(slot)];
      const float dx = entry.x - blob.centre_x;
      const float dy = entry.y - blob.centre_y;
      if (dx * dx + dy * dy >= kReach || entry.index < wanted.from) continue;
      const float score =
          shape_score(position_factor(dx, dy), entry.count, entry.width, entry.height, shape);
      if (score > wanted.above && score > entry.score) out->push_back({entry.index, score});
    }
  }
}

}  // namespace nox::pentracker
