#include "vectorizer/mask_ring.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

#include "vectorizer/bit_rows.h"
#include "vectorizer/mask_counters.h"
#include "video/aligned_alloc.h"

namespace {

using nox::vectorizer::BitRows;
using nox::vectorizer::MaskCounters;

void advance(MaskRing *ring) {
  ring->index = (ring->index + 1) % ring->capacity;
}

std::size_t slots_bytes(std::int32_t capacity) {
  return static_cast<std::size_t>(capacity) * sizeof(BitMask *);
}

std::size_t row_bytes(std::int32_t width) {
  return (static_cast<std::size_t>(width) + 63) / 64 * sizeof(std::uint64_t);
}

std::uint8_t *row_of(const BitMask *mask, std::int32_t y) {
  return mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
}

template <class Combine>
void combine_rows(BitMask *out, const BitMask *mask, Combine combine) {
  const std::size_t bytes = row_bytes(out->width);
  for (std::int32_t y = 0; y < out->height; ++y) {
    std::uint8_t *to = row_of(out, y);
    const std::uint8_t *from = row_of(mask, y);
    for (std::size_t i = 0; i < bytes; i += sizeof(std::uint64_t)) {
      std::uint64_t a, b;
      std::memcpy(&a, to + i, sizeof(a));
      std::memcpy(&b, from + i, sizeof(b));
      a = combine(a, b);
      std::memcpy(to + i, &a, sizeof(a));
    }
  }
}

template <class Combine>
void combine_slots(const MaskRing *ring, BitMask *out, Combine combine) {
  if (ring->slots[0] != nullptr) bitmask_copy(out, ring->slots[0]);
  for (std::int32_t i = 1; i < ring->capacity; ++i) {
    if (ring->slots[i] != nullptr) combine_rows(out, ring->slots[i], combine);
  }
}

// One row at a time through an aligned row, which the counters need and a mask's rows are not.
void feed_rows(MaskRing *ring, const BitMask *mask, BitMask *out, MaskCounters::Question question) {
  MaskCounters &counters = nox::vectorizer::begin_compact_frame(ring, question);
  const std::size_t words = counters.row_words();
  const std::size_t bytes = row_bytes(ring->width);
  auto *row =
      static_cast<std::uint64_t *>(nox_aligned_alloc(kNoxAlignment, words * sizeof(std::uint64_t)));
  std::memset(row, 0, words * sizeof(std::uint64_t));
  for (std::int32_t y = 0; y < ring->height; ++y) {
    std::memcpy(row, row_of(mask, y), bytes);
    counters.step(y, BitRows{row, words, words, 1});
    std::memcpy(row_of(out, y), row, bytes);
  }
  nox_aligned_free(row);
}

}  // namespace

MaskRing *mask_ring_new(std::int32_t width, std::int32_t height, std::int32_t capacity) {
  auto *ring = static_cast<MaskRing *>(nox_aligned_alloc(kNoxAlignment, sizeof(MaskRing)));
  auto **slots = static_cast<BitMask **>(nox_aligned_alloc(kNoxAlignment, slots_bytes(capacity)));
  std::memset(slots, 0, slots_bytes(capacity));
  *ring = {slots, capacity, 0, width, height, nullptr};
  return ring;
}

void mask_ring_free(MaskRing *ring) {
  if (ring == nullptr) return;
  for (std::int32_t i = 0; i < ring->capacity; ++i) bitmask_free(ring->slots[i]);
  nox_aligned_free(ring->slots);
  delete ring->counters;
  nox_aligned_free(ring);
}

BitMask *mask_ring_next(MaskRing *ring) {
  advance(ring);
  BitMask *&slot = ring->slots[ring->index];
  if (slot == nullptr) slot = bitmask_new(ring->width, ring->height);
  return slot;
}

void mask_ring_and(const MaskRing *ring, BitMask *out) {
  combine_slots(ring, out, std::bit_and<std::uint64_t>());
}

void mask_ring_or(const MaskRing *ring, BitMask *out) {
  combine_slots(ring, out, std::bit_or<std::uint64_t>());
}

void mask_ring_feed_and(MaskRing *ring, const BitMask *mask, BitMask *out) {
  feed_rows(ring, mask, out, MaskCounters::Question::kSetInAll);
}

void mask_ring_feed_or(MaskRing *ring, const BitMask *mask, BitMask *out) {
  feed_rows(ring, mask, out, MaskCounters::Question::kSetInAny);
}

MaskCounters &nox::vectorizer::begin_compact_frame(MaskRing *ring,
                                                   MaskCounters::Question question) {
  advance(ring);
  if (ring->counters == nullptr) {
    ring->counters = new MaskCounters(ring->width, ring->height, ring->capacity, question);
  }
  return *ring->counters;
}
