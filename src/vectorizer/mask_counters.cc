#include "vectorizer/mask_counters.h"

#include <algorithm>
#include <cstring>

#include "vectorizer/mask_counters_kernels.h"
#include "video/aligned_alloc.h"

namespace nox::vectorizer {

MaskCounters::MaskCounters(std::int32_t width, std::int32_t height, std::int32_t limit,
                           Question question)
    : limit_(limit), question_(question), row_words_(block_row_words(std::max(width, 0))) {
  const std::size_t bytes = planes_words(std::max(height, 0)) * sizeof(std::uint64_t);
  planes_ = static_cast<std::uint64_t *>(nox_aligned_alloc(kNoxAlignment, bytes));
  std::memset(planes_, 0, bytes);
  // All counters are at the same end.
  settled_ =
      static_cast<std::uint8_t *>(nox_aligned_alloc(kNoxAlignment, blocks(std::max(height, 0))));
  std::memset(settled_, 1, blocks(std::max(height, 0)));
  if (question == Question::kSetInAll) return;
  // Never set: all counters at the limit.
  const std::size_t plane_bytes = row_words_ * sizeof(std::uint64_t);
  std::uint64_t *plane = planes_;
  for (std::int32_t y = 0; y < height; ++y) {
    for (int k = 0; k < counter_planes(limit); ++k, plane += row_words_) {
      if (((limit >> k) & 1) != 0) std::memset(plane, 0xFF, plane_bytes);
    }
  }
}

MaskCounters::~MaskCounters() {
  nox_aligned_free(planes_);
  nox_aligned_free(settled_);
}

// Words of the planes of `rows` rows.
std::size_t MaskCounters::planes_words(std::int32_t rows) const {
  return static_cast<std::size_t>(rows) * row_words_ *
         static_cast<unsigned>(counter_planes(limit_));
}

std::size_t MaskCounters::blocks(std::int32_t rows) const {
  return static_cast<std::size_t>(rows) * (row_words_ / kBlockWords);
}

void MaskCounters::step(std::int32_t y, const BitRows &bits) {
  count_runs(planes_ + planes_words(y), settled_ + blocks(y), limit_,
             question_ == Question::kSetInAny, bits);
}

}  // namespace nox::vectorizer
