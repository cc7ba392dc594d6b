#include "scaler/filter_kernels.h"

#include <cstring>

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "scaler/filter_kernels.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include <hwy/highway.h>

#include "scaler/dot_ops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace nox::scaler {
namespace HWY_NAMESPACE {
namespace {

// Samples are fetched so that four neighbouring bytes are the four taps of a quad: by one
// permutation of a whole vector where the instruction set has it, else by one of each 16-byte
// block, which then has a window of its own.
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3_DL

using Bytes = hn::FixedTag<std::uint8_t, 64>;
constexpr FetchShape kShape = {16, 64};

HWY_INLINE hn::Vec<Bytes> fetch(Bytes d, const std::uint8_t *row, const ColumnQuad &quad,
                                std::size_t x) {
  const auto window = hn::LoadU(d, row + quad.windows[x / kShape.group_outputs]);
  const auto picks = hn::LoadU(d, quad.picks.data() + x * kTapsPerQuad);
  return hn::Vec<Bytes>{_mm512_permutexvar_epi8(picks.raw, window.raw)};
}

#else

#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2
using Bytes = hn::FixedTag<std::uint8_t, 32>;
#else
using Bytes = hn::FixedTag<std::uint8_t, 16>;
#endif
constexpr FetchShape kShape = {4, 16};

HWY_INLINE hn::Vec<Bytes> fetch(Bytes d, const std::uint8_t *row, const ColumnQuad &quad,
                                std::size_t x) {
  const hn::FixedTag<std::uint8_t, 16> block;
  const std::int32_t *windows = quad.windows.data() + x / kShape.group_outputs;
  const auto picks = hn::LoadU(d, quad.picks.data() + x * kTapsPerQuad);
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2
  const auto samples =
      hn::Combine(d, hn::LoadU(block, row + windows[1]), hn::LoadU(block, row + windows[0]));
#else
  const auto samples = hn::LoadU(block, row + windows[0]);
#endif
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
  auto pairs = hn::Zero(d16);
  for (std::size_t q = 0; q < kQuads; ++q) {
    const ColumnQuad &quad = plan.quads[q];
    const auto weights = hn::LoadU(weight_tag, quad.weights.data() + x * kTapsPerQuad);
    pairs = hn::Add(pairs, dot_byte_pairs(fetch(d, row, quad, x), weights));
  }
  const auto sums = add_dot_word_pairs(hn::Zero(d32), pairs, hn::Set(d16, 1));
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
    hn::StoreU(hn::BitCast(d32, words), d32, pairs + x);
  }
}

template <int kCount, int kShift>
void merge(const RowStep &step, const std::int32_t *const *pairs, std::size_t width,
           std::uint8_t *out) {
  const hn::CappedTag<std::int32_t, kColumnStep> d32;
  const hn::Repartition<std::int16_t, decltype(d32)> d16;
  const hn::Rebind<std::uint8_t, decltype(d32)> d8;
  const std::size_t lanes = hn::Lanes(d32);
  const auto half = hn::Set(d32, 1 << (kShift - 1));
  for (std::size_t x = 0; x < width; x += lanes) {
    auto sum = half;
    for (int i = 0; i < kCount; ++i) {
      const auto weights = hn::BitCast(d16, hn::Set(d32, step.weights[i]));
      sum = add_dot_word_pairs(sum, hn::BitCast(d16, hn::LoadU(d32, pairs[i] + x)), weights);
    }
    const auto samples = hn::DemoteTo(d8, hn::ShiftRight<kShift>(sum));
    if (x + lanes <= width) {
      hn::StoreU(samples, d8, out + x);
    } else {
      std::uint8_t rest[kColumnStep];
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
