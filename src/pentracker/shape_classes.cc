#include "pentracker/shape_classes.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace nox::pentracker {

namespace {

constexpr std::int32_t kEmpty = -1;

std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

std::size_t hash(std::int32_t count, std::int32_t width, std::int32_t height, bool placed) {
  // Odd multipliers that spread small numbers over the high bits.
  const std::uint64_t mixed =
      static_cast<std::uint64_t>(count) * 0x9E3779B97F4A7C15U ^
      static_cast<std::uint64_t>(width) * 0xC2B2AE3D27D4EB4FU ^
      static_cast<std::uint64_t>(height * 2 + (placed ? 1 : 0)) * 0x165667B19E3779F9U;
  return static_cast<std::size_t>(mixed >> 32);
}

}  // namespace

// The class with this key, made when there is none yet.
std::int32_t ShapeClasses::class_of(const Key &key) {
  const std::size_t mask = table_.size() - 1;
  std::size_t place = hash(key.count, key.width, key.height, key.placed) & mask;
  while (table_[place] != kEmpty) {
    if (keys_[at(table_[place])] == key) return table_[place];
    place = (place + 1) & mask;
  }
  const auto made = static_cast<std::int32_t>(classes_.size());
  table_[place] = made;
  keys_.push_back(key);
  classes_.push_back({key.placed ? kFarPosition : 1.0F, static_cast<float>(key.count),
                      static_cast<float>(key.width), static_cast<float>(key.height), 0.0F, 0, 0});
  return made;
}

void ShapeClasses::build(BlobSpan earlier) {
  classes_.clear();
  keys_.clear();
  table_.assign(2 * std::bit_ceil(at(earlier.count)), kEmpty);
  class_of_blob_.resize(at(earlier.count));
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    const Blob &blob = earlier.blobs[i];
    class_of_blob_[at(i)] =
        class_of({blob.pixel_count, blob.width, blob.height, blob.previous != nullptr});
    ++classes_[at(class_of_blob_[at(i)])].end;
  }
  place(earlier);
}

// Turns the classes' sizes, counted in `end`, into places, and puts the blobs there in list order.
void ShapeClasses::place(BlobSpan earlier) {
  std::int32_t total = 0;
  for (Class &c : classes_) {
    c.begin = total;
    total += c.end;
    c.end = c.begin;
  }
  members_.resize(at(earlier.count));
  positions_.resize(at(earlier.count));
  scores_.resize(earlier.count);
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    const std::int32_t position = classes_[at(class_of_blob_[at(i)])].end++;
    members_[at(position)] = i;
    positions_[at(i)] = position;
    scores_.put(position, earlier.blobs[i].successor_score);
  }
  scores_.settle();
}

void ShapeClasses::set_score(std::int32_t index, float score) {
  scores_.set(positions_[at(index)], score);
}

void ShapeClasses::find(const BlobShape &shape, LinkWanted wanted,
                        std::vector<LinkCandidate> *out) {
  LinkCandidate highest{0, -1.0F};
  for (const LinkCandidate &c : *out) {
    if (c.score > highest.score) highest = c;
  }
  for (Class &c : classes_) {
    const float score = shape_score(c.position, c.count, c.width, c.height, shape);
    if (score <= wanted.above || score <= c.no_score_below) continue;
    find_in(&c, score, wanted, &highest, out);
  }
}

void ShapeClasses::find_in(Class *shape_class, float score, LinkWanted wanted,
                           LinkCandidate *highest, std::vector<LinkCandidate> *out) {
  const std::int32_t end = shape_class->end;
  std::int32_t begin = shape_class->begin;
  if (members_[at(begin)] < wanted.from) {
    const auto first = members_.begin();
    begin = static_cast<std::int32_t>(std::lower_bound(first + begin, first + end, wanted.from) -
                                      first);
    if (begin == end) return;
  }
  const bool surpassed = score <= highest->score;
  if (surpassed && members_[at(begin)] >= highest->index) return;
  const std::int32_t position = scores_.first_below(begin, end, score);
  if (position == end) {
    if (begin == shape_class->begin) shape_class->no_score_below = score;
    return;
  }
  const LinkCandidate found{members_[at(position)], score};
  if (surpassed && found.index >= highest->index) return;
  out->push_back(found);
  if (!surpassed) *highest = found;
}

}  // namespace nox::pentracker
