// Which rows of a table are still open, as bits: stretches that are closed cost next to nothing.
#ifndef PENTRACKER_OPEN_ROWS_H_
#define PENTRACKER_OPEN_ROWS_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "pentracker/at.h"

namespace nox::pentracker {

class OpenRows {
 public:
  // Opens rows 0 to count - 1.
  void reset(std::int32_t count) {
    count_ = count;
    words_.assign(at(count) / kBits + 1, ~std::uint64_t{0});
  }

  bool is_open(std::int32_t row) const {
    return (words_[at(row) / kBits] >> at(row) % kBits & 1) != 0;
  }

  void close(std::int32_t row) {
    words_[at(row) / kBits] &= ~(std::uint64_t{1} << at(row) % kBits);
  }

  // The first open row from `row` on; one past the last if there is none.
  std::int32_t next(std::int32_t row) const {
    if (row >= count_) return row;
    std::size_t i = at(row) / kBits;
    std::uint64_t word = words_[i] >> at(row) % kBits;
    if (word != 0) return row + std::countr_zero(word);
    // The last word has a bit behind all rows, which is never closed.
    while (words_[++i] == 0) continue;
    return static_cast<std::int32_t>(i * kBits) + std::countr_zero(words_[i]);
  }

 private:
  static constexpr std::size_t kBits = 64;
  std::vector<std::uint64_t> words_;
  std::int32_t count_ = 0;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_OPEN_ROWS_H_
