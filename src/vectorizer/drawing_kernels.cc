#include "vectorizer/drawing_kernels.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "vectorizer/drawing_kernels.cc"
#include <hwy/foreach_target.h>
// After foreach_target.h, which sets the target.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace nox::vectorizer {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteVec = hn::Vec<Bytes>;

// Rounded averages with constants are exact shifts: two of them, with a and then b, make (v + a + 2
// b + 3) >> 2. With the right constants that is the blend with the page at kAlphaWash, (page * 48 +
// v * 16
// + 32) >> 6: for luma (v + 255 * 3 + 2) >> 2.
HWY_INLINE ByteVec WashLuma(Bytes d, ByteVec v) {
  return hn::AverageRound(hn::AverageRound(v, hn::Set(d, 254)), hn::Set(d, 255));
}

// For chroma at kAlphaWash (v + 128 * 3 + 2) >> 2. At 40, the mean of both alphas, (128 * 24 + v *
// 40 + 32) >> 6 is (5 v + 388) >> 3: the average of v and (v + 384) >> 2, which differs by one
// constant.
HWY_INLINE ByteVec DrawChroma(Bytes d, ByteVec v, hn::Mask<Bytes> one, hn::Mask<Bytes> two) {
  const ByteVec first = hn::AverageRound(v, hn::Set(d, 127));
  const ByteVec constant = hn::IfThenElse(one, hn::Set(d, 127), hn::Set(d, 128));
  const ByteVec quarter = hn::AverageRound(first, constant);
  return hn::IfThenElse(two, v, hn::IfThenElse(one, hn::AverageRound(v, quarter), quarter));
}

// Calls step(x, from, to) for whole vectors of samples, the last of them through copies.
template <class Step>
HWY_INLINE void ForEachStep(std::uint8_t *dst, const std::uint8_t *src, std::size_t samples,
                            Step step) {
  constexpr Bytes d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t x = 0;
  for (; x + lanes <= samples; x += lanes) step(x, src + x, dst + x);
  if (x == samples) return;
  std::uint8_t copy[hn::MaxLanes(Bytes())] = {};
  std::memcpy(copy, src + x, samples - x);
  step(x, copy, copy);
  std::memcpy(dst + x, copy, samples - x);
}

void DrawLumaRow(std::uint8_t *dst, const std::uint8_t *src, const std::uint64_t *bits,
                 std::size_t samples) {
  const auto *mask = reinterpret_cast<const std::uint8_t *>(bits);
  ForEachStep(dst, src, samples,
              [mask](std::size_t x, const std::uint8_t *from, std::uint8_t *to) HWY_ATTR {
                constexpr Bytes d;
                const ByteVec v = hn::LoadU(d, from);
                const auto edge = hn::LoadMaskBits(d, mask + x / 8);
                hn::StoreU(hn::IfThenElse(edge, v, WashLuma(d, v)), d, to);
              });
}

void DrawChromaRow(std::uint8_t *dst, const std::uint8_t *src, const std::uint64_t *any,
                   const std::uint64_t *both, std::size_t samples) {
  const auto *any_mask = reinterpret_cast<const std::uint8_t *>(any);
  const auto *both_mask = reinterpret_cast<const std::uint8_t *>(both);
  ForEachStep(dst, src, samples,
              [any_mask, both_mask](std::size_t x, const std::uint8_t *from, std::uint8_t *to)
                  HWY_ATTR {
                    constexpr Bytes d;
                    const ByteVec v = hn::LoadU(d, from);
                    const auto one = hn::LoadMaskBits(d, any_mask + x / 8);
                    const auto two = hn::LoadMaskBits(d, both_mask + x / 8);
                    hn::StoreU(DrawChroma(d, v, one, two), d, to);
                  });
}

// At most half a block of words at a time, since two vectors of them make one of pairs.
using Words = hn::CappedTag<std::uint64_t, kBlockWords / 2>;
using WordVec = hn::Vec<Words>;

// Exchanges the bits of `mask` with those kShift above them.
template <int kShift>
HWY_INLINE WordVec SwapBits(Words d, WordVec v, std::uint64_t mask) {
  const WordVec differ = hn::And(hn::Xor(v, hn::ShiftRight<kShift>(v)), hn::Set(d, mask));
  return hn::Xor(v, hn::Xor(differ, hn::ShiftLeft<kShift>(differ)));
}

// The even bits of each word into its low half, the odd ones into the high half.
HWY_INLINE WordVec Unshuffle(Words d, WordVec v) {
  v = SwapBits<1>(d, v, 0x2222222222222222);
  v = SwapBits<2>(d, v, 0x0C0C0C0C0C0C0C0C);
  v = SwapBits<4>(d, v, 0x00F000F000F000F0);
  v = SwapBits<8>(d, v, 0x0000FF000000FF00);
  return SwapBits<16>(d, v, 0x00000000FFFF0000);
}

void SplitPairs(const std::uint64_t *bits, std::size_t words, std::uint64_t *any,
                std::uint64_t *both) {
  const Words d;
  const hn::Repartition<std::uint32_t, Words> halves;
  const std::size_t step = hn::Lanes(d);
  for (std::size_t i = 0; i < words; i += 2 * step) {
    const auto low = hn::BitCast(halves, Unshuffle(d, hn::LoadU(d, bits + i)));
    const auto high = hn::BitCast(halves, Unshuffle(d, hn::LoadU(d, bits + i + step)));
    const auto even = hn::ConcatEven(halves, high, low);
    const auto odd = hn::ConcatOdd(halves, high, low);
    hn::StoreU(hn::BitCast(d, hn::Or(even, odd)), d, any + i / 2);
    hn::StoreU(hn::BitCast(d, hn::And(even, odd)), d, both + i / 2);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::vectorizer
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::vectorizer {

HWY_EXPORT(DrawLumaRow);
void draw_luma_row(std::uint8_t *dst, const std::uint8_t *src, const std::uint64_t *bits,
                   std::size_t samples) {
  HWY_DYNAMIC_DISPATCH(DrawLumaRow)(dst, src, bits, samples);
}

HWY_EXPORT(SplitPairs);
void split_pairs(const std::uint64_t *bits, std::size_t words, std::uint64_t *any,
                 std::uint64_t *both) {
  HWY_DYNAMIC_DISPATCH(SplitPairs)(bits, words, any, both);
}

HWY_EXPORT(DrawChromaRow);
void draw_chroma_row(std::uint8_t *dst, const std::uint8_t *src, const std::uint64_t *any,
                     const std::uint64_t *both, std::size_t samples) {
  HWY_DYNAMIC_DISPATCH(DrawChromaRow)(dst, src, any, both, samples);
}

}  // namespace nox::vectorizer
#endif  // HWY_ONCE
