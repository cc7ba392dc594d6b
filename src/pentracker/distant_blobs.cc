#include "pentracker/distant_blobs.h"

#include <initializer_list>

#include "pentracker/at.h"
#include "pentracker/link_kernels.h"

namespace nox::pentracker {

namespace {

constexpr std::int32_t kNone = -1;

}  // namespace

std::size_t DistantBlobs::Hash::operator()(const Key &key) const {
  constexpr std::size_t kMultiplier = 0x9E3779B1U;
  std::size_t hash = key.has_place ? 1 : 0;
  for (const std::int32_t part : {key.pixel_count, key.width, key.height}) {
    hash = hash * kMultiplier + at(part);
  }
  return hash;
}

void DistantBlobs::build(BlobSpan earlier) {
  find_classes(earlier);
  place_members(earlier);
  fill_table(earlier);
  for (std::int32_t i = 0; i < earlier.count; ++i) note(i, earlier.blobs[i].successor_score);
  for (Class &blobs : classes_) update(&blobs);
}

void DistantBlobs::find_classes(BlobSpan earlier) {
  class_of_key_.clear();
  classes_.clear();
  class_of_.resize(at(earlier.count));
  rank_.resize(at(earlier.count));
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    const Blob &blob = earlier.blobs[i];
    const Key key{blob.pixel_count, blob.width, blob.height, blob.previous != nullptr};
    const auto next = static_cast<std::int32_t>(classes_.size());
    const auto [entry, is_new] = class_of_key_.try_emplace(key, next);
    if (is_new) classes_.push_back({});
    class_of_[at(i)] = entry->second;
    rank_[at(i)] = classes_[at(entry->second)].size++;
  }
}

void DistantBlobs::place_members(BlobSpan earlier) {
  trees_.clear();
  std::int32_t first = 0;
  for (Class &blobs : classes_) {
    blobs.first = first;
    blobs.taken = trees_.add(blobs.size);
    first += blobs.size;
  }
  members_.resize(at(earlier.count));
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    members_[at(classes_[at(class_of_[at(i)])].first + rank_[at(i)])] = i;
  }
}

void DistantBlobs::fill_table(BlobSpan earlier) {
  const auto count = static_cast<std::int32_t>(classes_.size());
  table_.resize(count);
  class_in_.resize(at(count));
  left_ = open_placeless_ = 0;
  for (std::int32_t row = 0; row < count; ++row) {
    Class &blobs = classes_[at(row)];
    const std::int32_t first = members_[at(blobs.first)];
    table_.put(row, first, earlier.blobs[first]);
    class_in_[at(row)] = blobs.row = row;
    open_placeless_ += earlier.blobs[first].previous == nullptr ? 1 : 0;
  }
}

void DistantBlobs::set_taken(std::int32_t index, float score) {
  Class *const blobs = &classes_[at(class_of_[at(index)])];
  if (blobs->row == kNone) return;
  note(index, score);
  update(blobs);
}

void DistantBlobs::note(std::int32_t index, float score) {
  const Class &blobs = classes_[at(class_of_[at(index)])];
  const std::size_t row = at(blobs.row);
  const float highest = highest_score(table_.count[row], table_.inverse_count[row]);
  const bool leaves = score >= table_.least[row] * highest;
  trees_.set(blobs.taken, rank_[at(index)], leaves ? kClosed : score);
}

void DistantBlobs::update(Class *blobs) {
  const std::size_t row = at(blobs->row);
  table_.taken[row] = trees_.least(blobs->taken);
  if (table_.taken[row] != kClosed) {
    table_.index[row] = members_[at(blobs->first + trees_.first_below(blobs->taken, kClosed))];
    return;
  }
  open_placeless_ -= table_.least[row] == 1.0F ? 1 : 0;
  blobs->row = kNone;
  ++left_;
}

// Forgets the rows of classes that have left, once these are the most.
void DistantBlobs::tidy() {
  if (2 * left_ <= table_.size) return;
  std::int32_t kept = 0;
  for (std::int32_t row = 0; row < table_.size; ++row) {
    if (table_.taken[at(row)] == kClosed) continue;
    class_in_[at(kept)] = class_in_[at(row)];
    classes_[at(class_in_[at(kept)])].row = kept;
    table_.move(row, kept++);
  }
  table_.resize(kept);
  left_ = 0;
}

// No score of a new blob of this shape that is distant is higher.
float DistantBlobs::highest(const BlobShape &shape) const {
  const float position = open_placeless_ > 0 ? 1.0F : kFarPosition;
  return position * highest_score(shape.count, shape.inverse_count);
}

// Of the class in this row, the first member that is not taken for so much.
void DistantBlobs::add_link(std::int32_t row, float score, RisingLinks *links) const {
  const Class &blobs = classes_[at(class_in_[at(row)])];
  const std::int32_t member = trees_.first_below(blobs.taken, score);
  links->add({members_[at(blobs.first + member)], score});
}

// The blobs of the very shape score highest, and most often leave nothing to the others.
void DistantBlobs::add_alike(const BlobShape &shape, RisingLinks *links) const {
  const auto whole = [](float size) { return static_cast<std::int32_t>(size); };
  for (const bool has_place : {false, true}) {
    const auto entry = class_of_key_.find(
        {whole(shape.count), whole(shape.width), whole(shape.height), has_place});
    if (entry == class_of_key_.end()) continue;
    const std::int32_t row = classes_[at(entry->second)].row;
    if (row == kNone) continue;
    const float score =
        shape_score(table_.least[at(row)], shape.count, shape.width, shape.height, shape);
    if (score > table_.taken[at(row)]) add_link(row, score, links);
  }
}

// What a walk has come to at the first member of a class that has not left is a bound for the whole
// class. Rows stay in the order of the first members, those that have left included: once nothing
// can score higher behind one of these, nothing can in the rows that follow.
void DistantBlobs::add_links(const LinkQuery &query, RisingLinks *links) {
  tidy();
  add_alike(query.shape, links);
  const float enough = highest(query.shape);
  for (std::int32_t row = 0; row < table_.size; ++row) {
    const std::int32_t first = members_[at(classes_[at(class_in_[at(row)])].first)];
    if (links->best_up_to(first) >= enough) return;
    const LinkCandidate next = next_distant(table_, query, row, links->links());
    row = next.index;
    if (row < table_.size) add_link(row, next.score, links);
  }
}

}  // namespace nox::pentracker
