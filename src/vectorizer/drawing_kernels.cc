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

// Two rounded averages with constants make an exact (v + k) >> 2: with a and b as the constants,
// k = a + 2 b + 3. That is the blend with the page at kAlphaWash, (page * 48 + v * 16 + 32) >> 6.
HWY_INLINE ByteVec Wash(Bytes d, ByteVec v, std::uint8_t a, std::uint8_t b) {
  return hn::AverageRound(hn::AverageRound(v, hn::Set(d, a)), hn::Set(d, b));
}

// k = 767 = 255 * 3 + 2.
HWY_INLINE ByteVec WashLuma(Bytes d, ByteVec v) {
  return Wash(d, v, 254, 255);
}

// k = 386 = 128 * 3 + 2.
HWY_INLINE ByteVec WashChroma(Bytes d, ByteVec v) {
  return Wash(d, v, 129, 127);
}

// At alpha 40, which lies between 64 and 16: (128 * 24 + v * 40 + 32) >> 6 is (5 v + 388) >> 3, and
// that is the rounded average of v and (v + 384) >> 2.
HWY_INLINE ByteVec HalfWashChroma(Bytes d, ByteVec v) {
  return hn::AverageRound(v, Wash(d, v, 127, 127));
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
  ForEachStep(
      dst, src, samples,
      [any_mask, both_mask](std::size_t x, const std::uint8_t *from, std::uint8_t *to) HWY_ATTR {
        constexpr Bytes d;
        const ByteVec v = hn::LoadU(d, from);
        const auto one = hn::LoadMaskBits(d, any_mask + x / 8);
        const auto two = hn::LoadMaskBits(d, both_mask + x / 8);
        const ByteVec washed = hn::IfThenElse(one, HalfWashChroma(d, v), WashChroma(d, v));
        hn::StoreU(hn::IfThenElse(two, v, washed), d, to);
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
