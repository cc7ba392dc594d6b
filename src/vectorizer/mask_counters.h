// A small number for every pixel of a mask, in as many bits as it needs.
#ifndef VECTORIZER_MASK_COUNTERS_H_
#define VECTORIZER_MASK_COUNTERS_H_

#include <cstddef>
#include <cstdint>

#include "vectorizer/bit_rows.h"

namespace nox::vectorizer {

// Counters from 0 to a limit N that answer for a history of masks without keeping it. They are
// bit-sliced, one bit-plane per binary digit, so that a step is a few operations on whole words;
// and where nothing changes any more, as without edges or on a still picture, there is hardly a
// step.
class MaskCounters {
 public:
  enum class Question {
    kSetInAll,  // in each of the last N masks: for how many masks the pixel has been set, up to N
    kSetInAny,  // in one of the last N masks: for how many it has not been set, up to N
  };

  // As behind a history of empty masks. 1 <= limit.
  MaskCounters(std::int32_t width, std::int32_t height, std::int32_t limit, Question question);
  ~MaskCounters();
  MaskCounters(const MaskCounters &) = delete;
  MaskCounters &operator=(const MaskCounters &) = delete;

  // The words of a row of bits: what BitRows::words must be.
  std::size_t row_words() const { return row_words_; }

  // Takes the bits of the next mask for the bits.count rows from `y` on and leaves the answers in
  // their place. Every row is to be stepped once per mask.
  void step(std::int32_t y, const BitRows &bits);

 private:
  std::size_t planes_words(std::int32_t rows) const;
  std::size_t blocks(std::int32_t rows) const;

  std::int32_t limit_;
  Question question_;
  std::size_t row_words_;
  std::uint64_t *planes_;  // owned
  std::uint8_t *settled_;  // owned; for each block of kBlockWords words of a row
};

}  // namespace nox::vectorizer

#endif  // VECTORIZER_MASK_COUNTERS_H_
