#include "vectorizer/mask_counters.h"

#include <algorithm>
#include <cstring>

#include "vectorizer/mask_counters_kernels.h"
#include "video/aligned_alloc.h"

namespace nox::vectorizer {

MaskCounters::MaskCounters(std::int32_t width, std::int32_t height, std::int32_t limit)
    : limit_(limit), row_words_(block_row_words(std::max(width, 0))) {
  const std::size_t bytes = static_cast<std::size_t>(std::max(height, 0)) * row_words_ *
                            static_cast<unsigned>(counter_planes(limit)) * sizeof(std::uint64_t);
  planes_ = static_cast<std::uint64_t *>(nox_aligned_alloc(kNoxAlignment, bytes));
  std::memset(planes_, 0, bytes);
}

MaskCounters::~MaskCounters() {
  nox_aligned_free(planes_);
}

std::uint64_t *MaskCounters::row(std::int32_t y) const {
  return planes_ +
         static_cast<std::size_t>(y) * row_words_ * static_cast<unsigned>(counter_planes(limit_));
}

void MaskCounters::step_runs(std::int32_t y, const BitRows &bits) {
  count_runs(row(y), limit_, bits);
}

void MaskCounters::step_holds(std::int32_t y, const BitRows &bits) {
  count_holds(row(y), limit_, bits);
}

}  // namespace nox::vectorizer
