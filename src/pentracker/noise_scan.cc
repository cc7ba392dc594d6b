#include "pentracker/noise_scan.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "pentracker/at.h"
#include "pentracker/mask_rows.h"

namespace nox::pentracker {

namespace {

// Appends the positions of the set bits to `out` and returns the new end.
std::int32_t *append_bits(std::int32_t *out, std::uint64_t bits, std::int32_t first) {
  for (; bits != 0; bits &= bits - 1) *out++ = first + std::countr_zero(bits);
  return out;
}

}  // namespace

NoiseScan::NoiseScan(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
  const std::size_t words = at(words_of(width));
  for (Row *row : {&above_, &row_}) {
    row->words.resize(words);
    row->begins.resize(words);
    row->groups.resize(words * kWordBits);
  }
  for (auto *events : {&starts_, &ends_, &contacts_}) events->resize(words * kWordBits + 1);
}

void NoiseScan::scan(const BitMask *mask, PixelGroups *groups) {
  groups->clear();
  std::fill(row_.words.begin(), row_.words.end(), 0);
  std::fill(row_.begins.begin(), row_.begins.end(), 0);
  for (std::int32_t y = 0; y < height_; ++y) {
    std::swap(above_, row_);
    find_events(mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride);
    groups->reserve(width_ / 2 + 2, width_);
    scan_row(y, groups);
  }
}

void NoiseScan::find_events(const std::uint8_t *row) {
  std::int32_t *start = starts_.data();
  std::int32_t *end = ends_.data();
  std::int32_t *contact = contacts_.data();
  std::uint64_t left = 0;          // the pixel left of this word, in bit 0
  std::uint64_t left_overlap = 0;  // the same of the pixels that are set in both rows
  const std::int32_t count = words_of(width_);
  for (std::int32_t w = 0; w < count; ++w) {
    const std::uint64_t word = read_word(row, width_, w);
    const std::uint64_t shifted = word << 1 | left;
    const std::uint64_t overlap = word & above_.words[at(w)];
    const std::uint64_t meets = overlap & (~(overlap << 1 | left_overlap) | above_.begins[at(w)]);
    row_.words[at(w)] = word;
    row_.begins[at(w)] = word & ~shifted;
    start = append_bits(start, word & ~shifted, w * kWordBits);
    end = append_bits(end, ~word & shifted, w * kWordBits);
    contact = append_bits(contact, meets, w * kWordBits);
    left = word >> (kWordBits - 1);
    left_overlap = overlap >> (kWordBits - 1);
  }
  if (left != 0) *end++ = count * kWordBits;
  *start = *contact = kRightOfPicture;
}

inline bool NoiseScan::Row::is_set(std::int32_t x) const {
  return (words[at(x / kWordBits)] >> (x % kWordBits) & 1) != 0;
}

// The group of a set pixel.
inline std::int32_t NoiseScan::Row::group_of(std::int32_t x) const {
  const std::int32_t word = x / kWordBits;
  // The word's begins up to x; without any, the segment came in from the left.
  const std::uint64_t until = begins[at(word)] << (kWordBits - 1 - x % kWordBits);
  const std::int32_t first = until != 0 ? x - std::countl_zero(until) : word * kWordBits;
  return groups[at(first)];
}

// What the scan of a row writes to, apart from the object: the compiler need not fear that writing
// a group changes where the groups are.
struct NoiseScan::RowState {
  std::int32_t *row_groups;
  std::uint64_t *row_begins;
  PixelGroups *groups;
  std::int32_t y;

  void add_segment(std::int32_t group, std::int32_t begin, std::int32_t end) {
    groups->append({begin, end, y, y, group});
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

void NoiseScan::scan_row(std::int32_t y, PixelGroups *groups) {
  RowState state{row_.groups.data(), row_.begins.data(), groups, y};
  const std::int32_t *contact = contacts_.data();
  const std::int32_t *end = ends_.data();
  for (const std::int32_t *start = starts_.data(); *start != kRightOfPicture; ++start, ++end) {
    // A run starts in the group above its first pixel or, without one, in a new group. The new one
    // is prepared in any case, which spares a branch that noise makes unpredictable.
    std::int32_t begin = *start;
    const bool joins = *contact == begin;
    const std::int32_t made = groups->prepare_group(begin, y);
    std::int32_t group = joins ? above_.group_of(begin) : made;
    groups->add_groups(joins ? 0 : 1);
    contact += joins ? 1 : 0;
    std::int32_t last = group;  // the group of the segment above that was met last
    for (; *contact < *end; ++contact) {
      const std::int32_t x = *contact;
      const std::int32_t other = above_.group_of(x);
      // Two segments that touch in the row above are of one component already.
      const bool known = last == group && above_.is_set(x - 1);
      last = other;
      if (other == group) continue;
      if (!known) groups->merge(std::min(group, other), std::max(group, other));
      if (other > group) continue;
      state.cut(group, begin, x);
      begin = x;
      group = other;
    }
    state.add_segment(group, begin, *end);
  }
}

}  // namespace nox::pentracker
