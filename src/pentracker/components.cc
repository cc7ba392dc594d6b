#include "pentracker/components.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

#include "pentracker/mask_runs.h"

namespace nox::pentracker {

namespace {

constexpr std::int32_t kNone = -1;
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kRightOfPicture = kHighest;

std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

// Appends the positions of the set bits to `out` and returns the new end.
std::int32_t *append_bits(std::int32_t *out, std::uint64_t bits, std::int32_t first) {
  for (; bits != 0; bits &= bits - 1) *out++ = first + std::countr_zero(bits);
  return out;
}

void extend(Box *box, const Box &other) {
  box->min_x = std::min(box->min_x, other.min_x);
  box->min_y = std::min(box->min_y, other.min_y);
  box->max_x = std::max(box->max_x, other.max_x);
  box->max_y = std::max(box->max_y, other.max_y);
}

}  // namespace

Components::Components(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
  const std::size_t words = at(words_of(width));
  for (Row *row : {&above_, &row_}) {
    row->words.resize(words);
    row->begins.resize(words);
    row->groups.resize(words * kWordBits);
  }
  for (auto *events : {&starts_, &ends_, &contacts_}) events->resize(words * kWordBits + 1);
}

bool Components::label(const BitMask *mask) {
  if (!take_over(mask)) return false;
  segment_count_ = group_count_ = 0;
  pixel_count_ = 0;
  clear_above();
  bool above_is_empty = true;
  for (std::int32_t y = 0; y < height_; ++y) {
    const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
    if (!read_row(row, width_, row_.words.data())) {
      if (!above_is_empty) clear_above();
      above_is_empty = true;
      continue;
    }
    reserve_row();
    find_events();
    scan_row(y);
    std::swap(above_, row_);
    above_is_empty = false;
  }
  list_components();
  return true;
}

// Notes what the mask holds; false when it is what the last one held. The bytes behind the rows are
// compared, too: where only they differ, the mask counts as changed and is labelled again.
bool Components::take_over(const BitMask *mask) {
  const auto size = at(mask->size);
  if (last_mask_.size() == size && size != 0 &&
      std::memcmp(last_mask_.data(), mask->block, size) == 0) {
    return false;
  }
  last_mask_.assign(mask->block, mask->block + size);
  return true;
}

void Components::clear_above() {
  std::fill(above_.words.begin(), above_.words.end(), 0);
  std::fill(above_.begins.begin(), above_.begins.end(), 0);
}

// Makes room for all that one row can add: a segment for each pixel, a group for every other one.
void Components::reserve_row() {
  const std::size_t pixels = at(width_) + 1;
  if (segments_.size() < at(segment_count_) + pixels) {
    segments_.resize(2 * segments_.size() + pixels);
  }
  if (groups_.size() < at(group_count_) + pixels) {
    groups_.resize(2 * groups_.size() + pixels);
    parents_.resize(groups_.size());
  }
}

void Components::find_events() {
  std::int32_t *start = starts_.data();
  std::int32_t *end = ends_.data();
  std::int32_t *contact = contacts_.data();
  std::uint64_t left = 0;          // the pixel left of this word, in bit 0
  std::uint64_t left_overlap = 0;  // the same of the pixels that are set in both rows
  const std::int32_t count = words_of(width_);
  for (std::int32_t w = 0; w < count; ++w) {
    const std::uint64_t row = row_.words[at(w)];
    const std::uint64_t shifted = row << 1 | left;
    row_.begins[at(w)] = row & ~shifted;
    if ((row | left) == 0) continue;
    const std::uint64_t overlap = row & above_.words[at(w)];
    const std::uint64_t meets = overlap & (~(overlap << 1 | left_overlap) | above_.begins[at(w)]);
    start = append_bits(start, row & ~shifted, w * kWordBits);
    end = append_bits(end, ~row & shifted, w * kWordBits);
    contact = append_bits(contact, meets, w * kWordBits);
    left = row >> (kWordBits - 1);
    left_overlap = overlap >> (kWordBits - 1);
  }
  if (left != 0) *end++ = count * kWordBits;
  *start = *contact = kRightOfPicture;
}

inline bool Components::Row::is_set(std::int32_t x) const {
  return (words[at(x / kWordBits)] >> (x % kWordBits) & 1) != 0;
}

// The group of a set pixel.
inline std::int32_t Components::Row::group_of(std::int32_t x) const {
  const std::int32_t word = x / kWordBits;
  // The word's begins up to x; without any, the segment came in from the left.
  const std::uint64_t until = begins[at(word)] << (kWordBits - 1 - x % kWordBits);
  const std::int32_t first = until != 0 ? x - std::countl_zero(until) : word * kWordBits;
  return groups[at(first)];
}

// What the scan of a row works on, apart from the object: the compiler need not fear that writing a
// group changes where the groups are.
struct Components::RowScan {
  std::int32_t *row_groups;
  std::uint64_t *row_begins;
  Group *groups;
  PixelRun *segment;  // the next one to be written
  std::int32_t y;

  void add_segment(std::int32_t group, std::int32_t begin, std::int32_t end) {
    *segment++ = {begin, end, y, group};
    Group &owner = groups[group];
    owner.pixel_count += end - begin;
    owner.box.min_x = std::min(owner.box.min_x, begin);
    owner.box.max_x = std::max(owner.box.max_x, end - 1);
    owner.box.max_y = y;
    row_groups[begin] = group;
    for (std::int32_t x = (begin | (kWordBits - 1)) + 1; x < end; x += kWordBits) {
      row_groups[x] = group;
    }
  }

  // Ends the segment of `group` before x, where the run goes on in another group.
  void cut(std::int32_t group, std::int32_t begin, std::int32_t x) {
    add_segment(group, begin, x);
    row_begins[x / kWordBits] |= std::uint64_t{1} << (x % kWordBits);
  }
};

void Components::scan_row(std::int32_t y) {
  RowScan scan{row_.groups.data(), row_.begins.data(), groups_.data(),
               segments_.data() + segment_count_, y};
  std::int32_t *const parents = parents_.data();
  std::int32_t made = group_count_;
  const std::int32_t *contact = contacts_.data();
  const std::int32_t *end = ends_.data();
  for (const std::int32_t *start = starts_.data(); *start != kRightOfPicture; ++start, ++end) {
    // A run starts in the group above its first pixel or, without one, in a new group. The new one
    // is prepared in any case, which spares a branch that noise makes unpredictable.
    std::int32_t begin = *start;
    const bool joins = *contact == begin;
    scan.groups[made] = {{begin, y, begin, y}, 0, kNone, made};
    parents[made] = made;
    std::int32_t group = joins ? above_.group_of(begin) : made;
    made += joins ? 0 : 1;
    contact += joins ? 1 : 0;
    std::int32_t last = group;  // the group of the segment above that was met last
    for (; *contact < *end; ++contact) {
      const std::int32_t x = *contact;
      const std::int32_t other = above_.group_of(x);
      // Two segments that touch in the row above are of one component already.
      const bool known = last == group && above_.is_set(x - 1);
      last = other;
      if (other == group) continue;
      if (!known) merge(std::min(group, other), std::max(group, other));
      if (other > group) continue;
      scan.cut(group, begin, x);
      begin = x;
      group = other;
    }
    scan.add_segment(group, begin, *end);
  }
  group_count_ = made;
  segment_count_ = static_cast<std::int32_t>(scan.segment - segments_.data());
}

inline std::int32_t Components::root(std::int32_t group) {
  std::int32_t *parents = parents_.data();
  while (parents[group] != group) {
    parents[group] = parents[parents[group]];
    group = parents[group];
  }
  return group;
}

inline void Components::merge(std::int32_t small, std::int32_t large) {
  const std::int32_t kept = root(small);
  const std::int32_t absorbed = root(large);
  if (kept == absorbed) return;
  parents_[at(absorbed)] = kept;
  groups_[at(groups_[at(kept)].last_merged)].next_merged = absorbed;
  groups_[at(kept)].last_merged = groups_[at(absorbed)].last_merged;
}

void Components::list_components() {
  components_.resize(at(group_count_));
  std::size_t count = 0;
  for (std::int32_t group = 0; group < group_count_; ++group) {
    components_[count].id = group;
    count += parents_[at(group)] == group ? 1 : 0;
  }
  components_.resize(count);
  first_pixels_.resize(at(group_count_));
  for (Component &component : components_) complete(&component);
}

// Gives the pixels of each group of the component their place.
void Components::complete(Component *component) {
  const Group *group = &groups_[at(component->id)];
  Box box = group->box;
  auto pixel = static_cast<std::int32_t>(pixel_count_);
  component->first_pixel = first_pixels_[at(component->id)] = pixel;
  pixel += group->pixel_count;
  while (group->next_merged != kNone) {
    first_pixels_[at(group->next_merged)] = pixel;
    group = &groups_[at(group->next_merged)];
    pixel += group->pixel_count;
    extend(&box, group->box);
  }
  component->box = box;
  component->pixel_count = pixel - component->first_pixel;
  pixel_count_ = at(pixel);
}

void Components::write_pixels(BlobPixel *pixels) const {
  std::vector<std::int32_t> next = first_pixels_;
  write_pixel_runs(segments_.data(), segment_count_, pixel_count_, next.data(), pixels);
}

}  // namespace nox::pentracker
