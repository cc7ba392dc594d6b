// Rows of bits with their guards, for tests of the kernels.
#ifndef VECTORIZER_BIT_ROW_MEMORY_H_
#define VECTORIZER_BIT_ROW_MEMORY_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "vectorizer/bit_rows.h"
#include "vectorizer/edge_kernels.h"
#include "video/aligned_alloc.h"

namespace nox::test {

struct WordsDeleter {
  void operator()(std::uint64_t *words) const { nox_aligned_free(words); }
};

// `count` cleared rows of `width` bits, with guard words before, between and behind them.
class BitRowMemory {
 public:
  BitRowMemory(std::int32_t width, std::int32_t count) {
    const std::size_t words = vectorizer::block_row_words(width);
    const std::size_t pitch = words + vectorizer::kGuardWords;
    const std::size_t total = static_cast<std::size_t>(count) * pitch + vectorizer::kGuardWords;
    memory_.reset(static_cast<std::uint64_t *>(
        nox_aligned_alloc(kNoxAlignment, total * sizeof(std::uint64_t))));
    std::memset(memory_.get(), 0, total * sizeof(std::uint64_t));
    rows_ = {memory_.get() + vectorizer::kGuardWords, words, pitch, count};
  }

  const vectorizer::BitRows &rows() const { return rows_; }
  bool get(std::int32_t x, std::int32_t y) const {
    return ((rows_.row(y)[x / 64] >> (x % 64)) & 1) != 0;
  }
  void set(std::int32_t x, std::int32_t y, bool value) const {
    std::uint64_t &word = rows_.row(y)[x / 64];
    const std::uint64_t bit = std::uint64_t{1} << (x % 64);
    word = value ? word | bit : word & ~bit;
  }

 private:
  std::unique_ptr<std::uint64_t, WordsDeleter> memory_;
  vectorizer::BitRows rows_;
};

}  // namespace nox::test

#endif  // VECTORIZER_BIT_ROW_MEMORY_H_
