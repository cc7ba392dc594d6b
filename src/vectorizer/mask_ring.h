// The masks of the last frames, and two questions to them.
#ifndef VECTORIZER_MASK_RING_H_
#define VECTORIZER_MASK_RING_H_

#include <cstdint>

#include "masks/bitmask.h"
#include "vectorizer/mask_counters.h"

// A ring of `capacity` masks of one size. It is fed in one of two ways, the same for all its life:
//
// - with masks: mask_ring_next gives the slot for the next frame's mask, mask_ring_and and
//   mask_ring_or walk all slots. Memory and time grow with the capacity.
// - compactly: mask_ring_feed_and or mask_ring_feed_or takes a frame's mask and answers at once, by
//   a counter per pixel in place of the masks. The answers are those of a ring fed with the same
//   masks; no slot is ever filled.
//
// Filling begins at slot 1, so slot 0 gets its first mask with frame number `capacity`.
struct MaskRing {
  BitMask **slots;  // owned, as are the masks; null until a slot is first used
  std::int32_t capacity;
  std::int32_t index;  // of the slot used last; 0 at first
  std::int32_t width;
  std::int32_t height;
  nox::vectorizer::MaskCounters *counters;  // owned; null until the first compact frame
};

// Makes an empty ring of masks of `width` by `height` pixels; 1 <= capacity. Release it with
// mask_ring_free.
MaskRing *mask_ring_new(std::int32_t width, std::int32_t height, std::int32_t capacity);

// Releases the ring and its masks; null is ignored.
void mask_ring_free(MaskRing *ring);

// Moves to the next slot and returns its mask, which the ring owns: cleared when the slot is used
// for the first time, later with what was last written into it.
BitMask *mask_ring_next(MaskRing *ring);

// Intersection and union of the masks in the ring, into `out`, a mask of the ring's size that the
// caller has cleared. When slot 0 holds a mask its whole block is copied over `out`; then the masks
// of the other slots are combined with `out`, ceil(width / 64) words of each row. Empty slots are
// skipped: the intersection with a cleared `out` is therefore empty until slot 0 is filled.
void mask_ring_and(const MaskRing *ring, BitMask *out);
void mask_ring_or(const MaskRing *ring, BitMask *out);

// Feed the next frame's mask compactly: the index moves on as with mask_ring_next, and ceil(width /
// 64) words of each row of `out` become what mask_ring_and or mask_ring_or would give there: the
// pixels set in each of the last `capacity` frames (none before frame number `capacity`), or in any
// of them. `mask` and `out` have the ring's size and may be the same. A ring is asked one of the
// two questions for all its life.
void mask_ring_feed_and(MaskRing *ring, const BitMask *mask, BitMask *out);
void mask_ring_feed_or(MaskRing *ring, const BitMask *mask, BitMask *out);

namespace nox::vectorizer {

// Begins a compact frame whose rows the caller steps itself: moves the index on and returns the
// ring's counters, made on first use. The question is the same for all the ring's life.
MaskCounters &begin_compact_frame(MaskRing *ring, MaskCounters::Question question);

}  // namespace nox::vectorizer

#endif  // VECTORIZER_MASK_RING_H_
