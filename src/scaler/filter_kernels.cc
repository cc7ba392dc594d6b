#include "scaler/filter_kernels.h"

#include <cstring>

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "scaler/filter_kernels.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include <hwy/highway.h>

#include "video/pair_ops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace nox::scaler {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
namespace ops = video::HWY_NAMESPACE;

// Samples are fetched so that four neighbouring bytes are the four taps of a quad: by one
// permutation of a whole vector where the instruction set has it, else by one of each 16-byte
// block, which then has a window of its own.
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3_DL

using Bytes = hn::FixedTag<std::uint8_t, 64>;
constexpr FetchShape kShape = {16, 64};

HWY_INLINE hn::Vec<Bytes> load_windows(const std::uint8_t *row, const std::int32_t *windows) {
  return hn::LoadU(Bytes(), row + windows[0]);
}

HWY_INLINE hn::Vec<Bytes> pick_samples(hn::Vec<Bytes> samples, hn::Vec<Bytes> picks) {
  return hn::Vec<Bytes>{_mm512_permutexvar_epi8(picks.raw, samples.raw)};
}

#else

constexpr FetchShape kShape = {4, 16};
using Block = hn::FixedTag<std::uint8_t, 16>;

#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2

using Bytes = hn::FixedTag<std::uint8_t, 32>;

HWY_INLINE hn::Vec<Bytes> load_windows(const std::uint8_t *row, const std::int32_t *windows) {
  return hn::Combine(Bytes(), hn::LoadU(Block(), row + windows[1]),
                     hn::LoadU(Block(), row + windows[0]));
}

#else

using Bytes = Block;

HWY_INLINE hn::Vec<Bytes> load_windows(const std::uint8_t *row, const std::int32_t *windows) {
  return hn::LoadU(Bytes(), row + windows[0]);
}

#endif

HWY_INLINE hn::Vec<Bytes> pick_samples(hn::Vec<Bytes> samples, hn::Vec<Bytes> picks) {
  return hn::TableLookupBytes(samples, picks);
}

#endif

// The filtered samples of one row, one in each 32-bit lane.
template <std::size_t kQuads>
HWY_INLINE auto filter_columns(const ColumnPlan &plan, const std::uint8_t *row, std::size_t x) {
  const Bytes d;
  const hn::RebindToSigned<Bytes> weight_tag;
  const hn::Repartition<std::int16_t, Bytes> d16;
  const hn::Repartition<std::int32_t, Bytes> d32;
  const auto samples = load_windows(row, plan.windows.data() + x / kShape.group_outputs);
  auto pairs = hn::Zero(d16);
  for (std::size_t q = 0; q < kQuads; ++q) {
    const std::size_t at = x * kTapsPerQuad;
    const auto picks = hn::Load(d, plan.quads[q].picks.get() + at);
    const auto weights = hn::BitCast(weight_tag, hn::Load(d, plan.quads[q].weights.get() + at));
    pairs = hn::Add(pairs, ops::dot_byte_pairs(pick_samples(samples, picks), weights));
  }
  const auto sums = ops::add_dot_word_pairs(hn::Zero(d32), pairs, hn::Set(d16, 1));
  // The sums of 8 taps stay far below, and those of 4 exceed 16 bits upwards only.
  return kQuads == 1 ? hn::Min(sums, hn::Set(d32, 32767)) : sums;
}

template <std::size_t kQuads>
void filter_rows(const ColumnPlan &plan, const std::uint8_t *upper, const std::uint8_t *lower,
                 std::int32_t *pairs) {
  const hn::Repartition<std::int32_t, Bytes> d32;
  const hn::Repartition<std::int16_t, Bytes> d16;
  for (std::size_t x = 0; x < plan.padded_count; x += hn::Lanes(d32)) {
    const auto low = filter_columns<kQuads>(plan, upper, x);
    const auto high = filter_columns<kQuads>(plan, lower, x);
    const auto words =
        hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16>(high)), hn::BitCast(d16, low));
    hn::Store(hn::BitCast(d32, words), d32, pairs + x);
  }
}

using Sums = hn::CappedTag<std::int32_t, kMergeStep / 4>;

// One vector of output samples, in whole samples but not clamped.
template <int kCount, int kShift>
HWY_INLINE hn::Vec<Sums> merge_columns(const RowStep &step, const std::int32_t *const *pairs,
                                       std::size_t x) {
  const Sums d32;
  const hn::Repartition<std::int16_t, Sums> d16;
  auto sum = hn::Set(d32, 1 << (kShift - 1));
  for (int i = 0; i < kCount; ++i) {
    const auto weights = hn::BitCast(d16, hn::Set(d32, step.weights[i]));
    sum = ops::add_dot_word_pairs(sum, hn::BitCast(d16, hn::Load(d32, pairs[i] + x)), weights);
  }
  return hn::ShiftRight<kShift>(sum);
}

template <int kCount, int kShift>
void merge(const RowStep &step, const std::int32_t *const *pairs, std::size_t width,
           std::uint8_t *out) {
  const hn::Repartition<std::uint8_t, Sums> d8;
  const std::size_t lanes = hn::Lanes(Sums());
  for (std::size_t x = 0; x < width; x += 4 * lanes) {
    const auto samples =
        ops::clamp_to_bytes(merge_columns<kCount, kShift>(step, pairs, x),
                            merge_columns<kCount, kShift>(step, pairs, x + lanes),
                            merge_columns<kCount, kShift>(step, pairs, x + 2 * lanes),
                            merge_columns<kCount, kShift>(step, pairs, x + 3 * lanes));
    if (x + 4 * lanes <= width) {
      hn::StoreU(samples, d8, out + x);
    } else {
      std::uint8_t rest[kMergeStep];
      hn::StoreU(samples, d8, rest);
      std::memcpy(out + x, rest, width - x);
    }
  }
}

// How many rows of pairs there are is fixed before the columns are walked.
template <int kTaps>
void merge_rows(const RowStep &step, const std::int32_t *const *pairs, std::size_t width,
                std::uint8_t *out) {
  constexpr int kShift = kTaps == 8 ? 12 : 14;
  switch (step.count) {
    case 1:
      return merge<1, kShift>(step, pairs, width, out);
    case 2:
      return merge<2, kShift>(step, pairs, width, out);
    case 3:
      return merge<3, kShift>(step, pairs, width, out);
    case 4:
      return merge<4, kShift>(step, pairs, width, out);
    default:
      return merge<kMaxPairs, kShift>(step, pairs, width, out);
  }
}

constexpr FilterKernels kKernels = {
    kShape, filter_rows<1>, filter_rows<2>, merge_rows<4>, merge_rows<8>,
};

const FilterKernels *kernels() {
  return &kKernels;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::scaler
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::scaler {

HWY_EXPORT(kernels);

const FilterKernels &filter_kernels() {
  return *HWY_DYNAMIC_DISPATCH(kernels)();
}

}  // namespace nox::scaler
#endif  // HWY_ONCE
