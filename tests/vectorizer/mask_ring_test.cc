#include "vectorizer/mask_ring.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

struct MaskDeleter {
  void operator()(BitMask *mask) const { bitmask_free(mask); }
};
using Mask = std::unique_ptr<BitMask, MaskDeleter>;

struct RingDeleter {
  void operator()(MaskRing *ring) const { mask_ring_free(ring); }
};
using Ring = std::unique_ptr<MaskRing, RingDeleter>;

Mask new_mask(std::int32_t width, std::int32_t height) {
  return Mask(bitmask_new(width, height));
}

std::uint8_t *row_of(const BitMask *mask, std::int32_t y) {
  return mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
}

// The pixels of a mask, without what is stored beyond the width.
std::vector<std::uint8_t> pixels(const BitMask *mask) {
  std::vector<std::uint8_t> all;
  for (std::int32_t y = 0; y < mask->height; ++y) {
    for (std::int32_t x = 0; x < mask->width; ++x) {
      all.push_back(static_cast<std::uint8_t>(bitmask_get(mask, x, y)));
    }
  }
  return all;
}

// Random bits in all stored columns of each row, also beyond the width.
void randomize(BitMask *mask, Random *random) {
  const auto bytes = static_cast<std::size_t>((mask->width + 127) / 128 * 16);
  for (std::int32_t y = 0; y < mask->height; ++y) random->fill(row_of(mask, y), bytes);
}

TEST(MaskRing, BeginsEmptyAtSlotZero) {
  const Ring ring(mask_ring_new(10, 3, 4));
  EXPECT_EQ(ring->capacity, 4);
  EXPECT_EQ(ring->index, 0);
  EXPECT_EQ(ring->width, 10);
  EXPECT_EQ(ring->height, 3);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ring->slots[i], nullptr);
}

TEST(MaskRing, NextFillsSlotOneFirstAndZeroLast) {
  const Ring ring(mask_ring_new(10, 3, 4));
  for (const int slot : {1, 2, 3, 0}) {
    const BitMask *mask = mask_ring_next(ring.get());
    EXPECT_EQ(ring->index, slot);
    EXPECT_EQ(ring->slots[slot], mask);
    EXPECT_EQ(mask->width, 10);
    EXPECT_EQ(mask->height, 3);
    EXPECT_EQ(pixels(mask), std::vector<std::uint8_t>(30));
  }
}

TEST(MaskRing, NextKeepsWhatTheSlotHeld) {
  const Ring ring(mask_ring_new(10, 3, 2));
  BitMask *first = mask_ring_next(ring.get());
  first->data[0] = 5;
  mask_ring_next(ring.get());
  EXPECT_EQ(mask_ring_next(ring.get()), first);
  EXPECT_EQ(first->data[0], 5);
}

TEST(MaskRing, EmptyRingLeavesTheAnswerAlone) {
  const Ring ring(mask_ring_new(10, 3, 3));
  const Mask out = new_mask(10, 3);
  out->data[0] = 0x5A;
  mask_ring_and(ring.get(), out.get());
  mask_ring_or(ring.get(), out.get());
  EXPECT_EQ(out->data[0], 0x5A);
}

TEST(MaskRing, IntersectionIsEmptyUntilSlotZeroIsFilled) {
  const Ring ring(mask_ring_new(10, 3, 3));
  for (int frame = 1; frame <= 3; ++frame) {
    std::memset(mask_ring_next(ring.get())->data, 0xFF, 16);
    const Mask out = new_mask(10, 3);
    mask_ring_and(ring.get(), out.get());
    EXPECT_EQ(bitmask_get(out.get(), 0, 0), frame == 3 ? 1 : 0);
  }
}

TEST(MaskRing, SlotZeroIsCopiedWithItsPadding) {
  const Ring ring(mask_ring_new(130, 2, 1));
  Random random(31);
  BitMask *slot = mask_ring_next(ring.get());
  randomize(slot, &random);
  const Mask out = new_mask(130, 2);
  mask_ring_and(ring.get(), out.get());
  EXPECT_EQ(std::memcmp(out->block, slot->block, static_cast<std::size_t>(slot->size)), 0);
}

TEST(MaskRing, CombinesWholeWordsAndNothingBehind) {
  const Ring ring(mask_ring_new(65, 1, 2));  // two words; 16 bytes of pixels, 19 of padding
  std::memset(mask_ring_next(ring.get())->data, 0xFF, 31);
  const Mask out = new_mask(65, 1);
  mask_ring_or(ring.get(), out.get());
  for (int i = 0; i < 31; ++i) EXPECT_EQ(out->data[i], i < 16 ? 0xFF : 0) << i;
}

TEST(MaskRing, TakesMasksWithoutPixels) {
  for (const auto &[width, height] : {std::pair{70, 0}, {0, 3}, {0, 0}, {70, -1}, {-1, 3}}) {
    SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
    const Ring in_all(mask_ring_new(width, height, 2)), in_any(mask_ring_new(width, height, 2));
    const Mask mask = new_mask(width, height);
    for (int frame = 1; frame <= 3; ++frame) {
      mask_ring_feed_and(in_all.get(), mask.get(), mask.get());
      mask_ring_feed_or(in_any.get(), mask.get(), mask.get());
      EXPECT_EQ(in_all->index, frame % 2);
      EXPECT_EQ(in_any->index, frame % 2);
    }
  }
}

TEST(MaskRing, FreeAcceptsNull) {
  EXPECT_NO_FATAL_FAILURE(mask_ring_free(nullptr));
}

// Every operation in random order against masks kept in a list.
TEST(MaskRing, MatchesAPlainWalkUnderRandomUse) {
  Random random(32);
  for (int round = 0; round < (quick() ? 5 : 60); ++round) {
    SCOPED_TRACE(round);
    const std::int32_t width = random.between(1, 200), height = random.between(1, 6);
    const std::int32_t capacity = random.between(1, 9);
    const Ring ring(mask_ring_new(width, height, capacity));
    std::deque<std::vector<std::uint8_t>> last;
    for (int frame = 1; frame <= 3 * capacity; ++frame) {
      BitMask *slot = mask_ring_next(ring.get());
      randomize(slot, &random);
      last.push_back(pixels(slot));
      if (static_cast<std::int32_t>(last.size()) > capacity) last.pop_front();
      std::vector<std::uint8_t> all(last.front().size(), frame >= capacity ? 1 : 0);
      std::vector<std::uint8_t> any(last.front().size());
      for (const auto &mask : last) {
        for (std::size_t i = 0; i < mask.size(); ++i) {
          all[i] &= mask[i];
          any[i] |= mask[i];
        }
      }
      const Mask in_all = new_mask(width, height), in_any = new_mask(width, height);
      mask_ring_and(ring.get(), in_all.get());
      mask_ring_or(ring.get(), in_any.get());
      ASSERT_EQ(pixels(in_all.get()), all);
      ASSERT_EQ(pixels(in_any.get()), any);
    }
  }
}

// Masks whose pixels, `together` of a row at a time, stay set or clear for random numbers of
// frames, often close to `about`.
class Runs {
 public:
  Runs(std::int32_t width, std::int32_t height, std::int32_t about, std::int32_t together,
       Random *random)
      : about_(about),
        together_(together),
        in_row_((width + together - 1) / together),
        random_(random),
        left_(static_cast<std::size_t>(in_row_) * static_cast<std::size_t>(height)),
        set_(left_.size()) {}

  void next(BitMask *mask) {
    for (std::size_t i = 0; i < left_.size(); ++i) {
      if (left_[i] == 0) {
        set_[i] = !set_[i];
        left_[i] = length();
      }
      --left_[i];
      const auto cell = static_cast<std::int32_t>(i);
      const std::int32_t left = cell % in_row_ * together_;
      for (std::int32_t x = left; x < std::min(left + together_, mask->width); ++x) {
        std::uint8_t &byte = row_of(mask, cell / in_row_)[x / 8];
        const int bit = 1 << (x % 8);
        byte = static_cast<std::uint8_t>(set_[i] ? byte | bit : byte & ~bit);
      }
    }
  }

 private:
  std::int32_t length() {
    if (random_->chance(0.3)) return random_->between(1, 3);
    return std::max(about_ + random_->between(-2, 2), 1);
  }

  std::int32_t about_;
  std::int32_t together_;
  std::int32_t in_row_;
  Random *random_;
  std::vector<std::int32_t> left_;
  std::vector<bool> set_;
};

class CompactRing : public hwy::TestWithParamTarget {
 protected:
  using Ask = void (*)(const MaskRing *, BitMask *);
  using Feed = void (*)(MaskRing *, const BitMask *, BitMask *);

  // Feeds two rings with the same masks, one in each way.
  static void expect_equal_ways(std::int32_t width, std::int32_t height, std::int32_t capacity,
                                int frames, Random *random, Ask ask, Feed feed,
                                std::int32_t together = 1) {
    const Ring walked(mask_ring_new(width, height, capacity));
    const Ring compact(mask_ring_new(width, height, capacity));
    Runs runs(width, height, capacity, together, random);
    const Mask mask = new_mask(width, height);
    for (int frame = 1; frame <= frames; ++frame) {
      runs.next(mask.get());
      bitmask_copy(mask_ring_next(walked.get()), mask.get());
      const Mask expected = new_mask(width, height), answer = new_mask(width, height);
      ask(walked.get(), expected.get());
      feed(compact.get(), mask.get(), answer.get());
      ASSERT_EQ(pixels(answer.get()), pixels(expected.get())) << "frame " << frame;
      ASSERT_EQ(compact->index, walked->index);
      ASSERT_EQ(compact->slots[compact->index], nullptr);
    }
    EXPECT_EQ(compact->capacity, capacity);
    EXPECT_EQ(compact->width, width);
    EXPECT_EQ(compact->height, height);
  }
};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(CompactRing);

TEST_P(CompactRing, IntersectionOf100EqualsTheWalk) {
  Random random(33);
  expect_equal_ways(70, 3, 100, quick() ? 230 : 700, &random, mask_ring_and, mask_ring_feed_and);
}

TEST_P(CompactRing, UnionOf500EqualsTheWalk) {
  Random random(34);
  expect_equal_ways(70, 3, 500, quick() ? 510 : 1700, &random, mask_ring_or, mask_ring_feed_or);
}

TEST_P(CompactRing, OtherCapacitiesEqualTheWalk) {
  Random random(35);
  for (const std::int32_t capacity : {1, 2, 3, 4, 7, 8, 31, 63, 64, 65}) {
    SCOPED_TRACE(capacity);
    const std::int32_t width = random.between(1, 600);
    expect_equal_ways(width, 2, capacity, 4 * capacity, &random, mask_ring_and, mask_ring_feed_and);
    expect_equal_ways(width, 2, capacity, 4 * capacity, &random, mask_ring_or, mask_ring_feed_or);
  }
}

// Counters at rest are passed over by blocks of 512 columns, of which one may come to look like
// another.
TEST_P(CompactRing, WideMasksOfOnePieceEqualTheWalk) {
  Random random(36);
  for (const std::int32_t capacity : {4, 100}) {
    const int frames = 12 * capacity;
    expect_equal_ways(2100, 3, capacity, frames, &random, mask_ring_and, mask_ring_feed_and, 512);
    expect_equal_ways(2100, 3, capacity, frames, &random, mask_ring_or, mask_ring_feed_or, 512);
  }
}

TEST_P(CompactRing, AnswersIntoItsOwnMask) {
  const Ring ring(mask_ring_new(9, 1, 2));
  const Mask mask = new_mask(9, 1);
  for (const int expected : {0, 1, 1}) {
    mask->data[0] = 1;
    mask_ring_feed_and(ring.get(), mask.get(), mask.get());
    EXPECT_EQ(mask->data[0], expected);
  }
}

}  // namespace
}  // namespace nox::test
