#include "scaler/box_kernels.h"

#include <cstring>

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "scaler/box_kernels.cc"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include <hwy/highway.h>

#include "video/pair_ops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace nox::scaler {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
namespace ops = video::HWY_NAMESPACE;

using Sixteen = hn::FixedTag<std::uint8_t, 16>;
using Widest = hn::ScalableTag<std::uint8_t>;

// The source rows of one output row.
struct Rows {
  const std::uint8_t *first;
  std::ptrdiff_t stride;

  // A vector of samples of row y from column x.
  template <class D>
  HWY_INLINE auto load(D d, std::size_t y, std::size_t x) const {
    return hn::LoadU(d, first + static_cast<std::ptrdiff_t>(y) * stride + x);
  }
};

void copy_row(const std::uint8_t *src, std::ptrdiff_t /*stride*/, std::size_t out_width,
              std::uint8_t *out) {
  std::memcpy(out, src, out_width);
}

// Each span function works in whole vectors from output column x on and returns where it stopped.

// The mean of each horizontal pair of the mean of two rows, in the even lanes.
template <class D>
HWY_INLINE auto halve_vector(D d, const Rows &rows, std::size_t x) {
  const hn::RepartitionToWide<D> d16;
  const auto means = hn::AverageRound(rows.load(d, 0, x), rows.load(d, 1, x));
  const auto odd = hn::BitCast(d, hn::ShiftRight<8>(hn::BitCast(d16, means)));
  return hn::AverageRound(means, odd);
}

template <class D>
std::size_t halve_span(D d, const Rows &rows, std::size_t x, std::size_t end, std::uint8_t *out) {
  const std::size_t lanes = hn::Lanes(d);
  for (; x + lanes <= end; x += lanes) {
    const auto low = halve_vector(d, rows, 2 * x);
    const auto high = halve_vector(d, rows, 2 * x + lanes);
    hn::StoreU(hn::ConcatEven(d, high, low), d, out + x);
  }
  return x;
}

std::uint8_t average(unsigned a, unsigned b) {
  return static_cast<std::uint8_t>((a + b + 1) >> 1);
}

void halve_row(const std::uint8_t *src, std::ptrdiff_t stride, std::size_t out_width,
               std::uint8_t *out) {
  const Rows rows = {src, stride};
  std::size_t x = halve_span(Widest(), rows, 0, out_width, out);
  x = halve_span(Sixteen(), rows, x, out_width, out);
  const std::uint8_t *below = src + stride;
  for (; x < out_width; ++x) {
    out[x] = average(average(src[2 * x], src[2 * x + 1]), average(below[2 * x], below[2 * x + 1]));
  }
}

// The sums of neighbouring samples, 16 bits each.
template <class D>
HWY_INLINE auto pair_sums(D d, const Rows &rows, std::size_t y, std::size_t x) {
  const hn::RebindToSigned<D> weight_tag;
  return ops::dot_byte_pairs(rows.load(d, y, x), hn::Set(weight_tag, 1));
}

// Means of 4 by 4, one in the low byte of each 32-bit lane.
template <class D>
HWY_INLINE auto quarter_vector(D d, const Rows &rows, std::size_t x) {
  const hn::Repartition<std::int16_t, D> d16;
  const hn::RepartitionToWide<decltype(d16)> d32;
  auto pairs = pair_sums(d, rows, 0, x);
  for (std::size_t y = 1; y < 4; ++y) pairs = hn::Add(pairs, pair_sums(d, rows, y, x));
  const auto sums = ops::add_dot_word_pairs(hn::Set(d32, 8), pairs, hn::Set(d16, 1));
  return hn::BitCast(d, hn::ShiftRight<4>(sums));
}

template <class D>
std::size_t quarter_span(D d, const Rows &rows, std::size_t x, std::size_t end, std::uint8_t *out) {
  const hn::RepartitionToWide<D> d16;
  const std::size_t lanes = hn::Lanes(d);
  const auto pack = [d16](auto high, auto low) {
    return hn::ConcatEven(d16, hn::BitCast(d16, high), hn::BitCast(d16, low));
  };
  for (; x + lanes <= end; x += lanes) {
    const auto low = pack(quarter_vector(d, rows, 4 * x + lanes), quarter_vector(d, rows, 4 * x));
    const auto high = pack(quarter_vector(d, rows, 4 * x + 3 * lanes),
                           quarter_vector(d, rows, 4 * x + 2 * lanes));
    hn::StoreU(hn::ConcatEven(d, hn::BitCast(d, high), hn::BitCast(d, low)), d, out + x);
  }
  return x;
}

void quarter_row(const std::uint8_t *src, std::ptrdiff_t stride, std::size_t out_width,
                 std::uint8_t *out) {
  const Rows rows = {src, stride};
  std::size_t x = quarter_span(Widest(), rows, 0, out_width, out);
  x = quarter_span(Sixteen(), rows, x, out_width, out);
  reduce_row_by(4, src + 4 * x, stride, out_width - x, out + x);
}

// Factors of 8 and 16: sums of 8 samples down `kFactor` rows, one in each 64-bit lane.
template <std::size_t kFactor, class D>
std::size_t sums_span(D d, const Rows &rows, std::size_t end, std::uint8_t *out) {
  const hn::Repartition<std::uint64_t, D> d64;
  constexpr std::size_t kSumsPerOut = kFactor / 8;
  const std::size_t step = hn::Lanes(d64) / kSumsPerOut;
  HWY_ALIGN std::uint64_t sums[HWY_MAX_BYTES / 8];
  std::size_t x = 0;
  for (; x + step <= end; x += step) {
    auto sum = hn::SumsOf8(rows.load(d, 0, kFactor * x));
    for (std::size_t y = 1; y < kFactor; ++y) {
      sum = hn::Add(sum, hn::SumsOf8(rows.load(d, y, kFactor * x)));
    }
    hn::Store(sum, d64, sums);
    for (std::size_t i = 0; i < step; ++i) {
      std::uint64_t total = kFactor * kFactor / 2;
      for (std::size_t k = 0; k < kSumsPerOut; ++k) total += sums[i * kSumsPerOut + k];
      out[x + i] = static_cast<std::uint8_t>(total / (kFactor * kFactor));
    }
  }
  return x;
}

template <std::size_t kFactor>
void reduce_row(const std::uint8_t *src, std::ptrdiff_t stride, std::size_t out_width,
                std::uint8_t *out) {
  const std::size_t x = sums_span<kFactor>(Widest(), {src, stride}, out_width, out);
  reduce_row_by(static_cast<std::int32_t>(kFactor), src + kFactor * x, stride, out_width - x,
                out + x);
}

constexpr BoxKernels kKernels = {{copy_row, halve_row, quarter_row, reduce_row<8>, reduce_row<16>}};

const BoxKernels *kernels() {
  return &kKernels;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::scaler
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::scaler {

HWY_EXPORT(kernels);

const BoxKernels &box_kernels() {
  return *HWY_DYNAMIC_DISPATCH(kernels)();
}

void reduce_row_by(std::int32_t factor, const std::uint8_t *src, std::ptrdiff_t stride,
                   std::size_t out_width, std::uint8_t *out) {
  const auto block = static_cast<std::uint64_t>(factor) * static_cast<std::uint64_t>(factor);
  for (std::size_t x = 0; x < out_width; ++x) {
    std::uint16_t sum = 0;
    for (std::ptrdiff_t y = 0; y < factor; ++y) {
      const std::uint8_t *row = src + y * stride;
      for (std::int32_t i = 0; i < factor; ++i) sum = static_cast<std::uint16_t>(sum + row[i]);
    }
    out[x] = static_cast<std::uint8_t>((sum + block / 2) / block);
    src += factor;
  }
}

}  // namespace nox::scaler
#endif  // HWY_ONCE
