// A small number for every pixel of a mask, in as many bits as it needs.
#ifndef VECTORIZER_MASK_COUNTERS_H_
#define VECTORIZER_MASK_COUNTERS_H_

#include <cstddef>
#include <cstdint>

#include "vectorizer/bit_rows.h"

namespace nox::vectorizer {

// Counters from 0 to a limit that answer for a history of masks without keeping it: a run length
// that stops at N tells "set in each of the last N masks", a countdown from N tells "set in any of
// the last N masks". They are bit-sliced, one bit-plane per binary digit, so that a step is a few
// operations on whole words. A counter is used in one of the two ways for all its life.
class MaskCounters {
 public:
  // All counters start at 0. 1 <= limit.
  MaskCounters(std::int32_t width, std::int32_t height, std::int32_t limit);
  ~MaskCounters();
  MaskCounters(const MaskCounters &) = delete;
  MaskCounters &operator=(const MaskCounters &) = delete;

  // The words of a row of bits: what BitRows::words must be.
  std::size_t row_words() const { return row_words_; }

  // Take the bits of this mask for the bits.count rows from `y` on and leave the answers in their
  // place. Every row is to be stepped once per mask.
  void step_runs(std::int32_t y, const BitRows &bits);
  void step_holds(std::int32_t y, const BitRows &bits);

 private:
  std::uint64_t *row(std::int32_t y) const;

  std::int32_t limit_;
  std::size_t row_words_;
  std::uint64_t *planes_;  // owned
};

}  // namespace nox::vectorizer

#endif  // VECTORIZER_MASK_COUNTERS_H_
