#include "vectorizer/frame_overlay_kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "vectorizer/frame_overlay_kernels.cc"
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
using HalfBytes = hn::Half<Bytes>;
using Shorts = hn::Repartition<std::uint16_t, Bytes>;
using ShortVec = hn::Vec<Shorts>;

constexpr std::uint8_t kOpaque = 64;

// 64 dst + a (src - dst) + 32 modulo 2^16, which is exact: with a up to 64 it is 32 to 16352.
HWY_INLINE ShortVec BlendShorts(Shorts d, ShortVec dst, ShortVec src, ShortVec a) {
  const ShortVec change = hn::Mul(hn::Sub(src, dst), a);
  return hn::ShiftRight<6>(hn::Add(hn::Add(hn::ShiftLeft<6>(dst), change), hn::Set(d, 32)));
}

HWY_INLINE ByteVec BlendBytes(Bytes d, ByteVec dst, ByteVec src, ByteVec a) {
  const HalfBytes half;
  const Shorts wide;
  const auto low = [half, wide](ByteVec v)
                       HWY_ATTR { return hn::PromoteTo(wide, hn::LowerHalf(half, v)); };
  const auto high = [half, wide](ByteVec v)
                        HWY_ATTR { return hn::PromoteTo(wide, hn::UpperHalf(half, v)); };
  const hn::RebindToSigned<Shorts> sign;
  const auto narrow = [half, sign](ShortVec v)
                          HWY_ATTR { return hn::DemoteTo(half, hn::BitCast(sign, v)); };
  return hn::Combine(d, narrow(BlendShorts(wide, high(dst), high(src), high(a))),
                     narrow(BlendShorts(wide, low(dst), low(src), low(a))));
}

std::uint8_t BlendSample(int dst, int src, int a) {
  return static_cast<std::uint8_t>(std::clamp((dst * (64 - a) + src * a + 32) >> 6, 0, 255));
}

// One vector of samples with its vector of alphas. Alphas above kOpaque, for which 16 bits do not
// do, go one by one.
HWY_INLINE void BlendStep(Bytes d, std::uint8_t *dst, const std::uint8_t *src, ByteVec a) {
  if (HWY_LIKELY(hn::AllTrue(d, hn::Eq(hn::SaturatedSub(a, hn::Set(d, kOpaque)), hn::Zero(d))))) {
    hn::StoreU(BlendBytes(d, hn::LoadU(d, dst), hn::LoadU(d, src), a), d, dst);
    return;
  }
  HWY_ALIGN std::uint8_t alphas[hn::MaxLanes(Bytes())];
  hn::Store(a, d, alphas);
  for (std::size_t i = 0; i < hn::Lanes(d); ++i) dst[i] = BlendSample(dst[i], src[i], alphas[i]);
}

HWY_INLINE ByteVec PairMeans(Bytes d, const std::uint8_t *alpha) {
  const ByteVec low = hn::LoadU(d, alpha);
  const ByteVec high = hn::LoadU(d, alpha + hn::Lanes(d));
  return hn::AverageRound(hn::ConcatEven(d, high, low), hn::ConcatOdd(d, high, low));
}

// Calls step(dst, src, alpha) for whole vectors, the last of them through copies; kAlphas alphas
// belong to each sample.
template <std::size_t kAlphas, class Step>
HWY_INLINE void ForEachStep(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                            std::size_t n, Step step) {
  constexpr Bytes d;
  constexpr std::size_t kMaxLanes = hn::MaxLanes(Bytes());
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) step(dst + i, src + i, alpha + kAlphas * i);
  if (i == n) return;
  std::uint8_t dst_copy[kMaxLanes] = {}, src_copy[kMaxLanes] = {};
  std::uint8_t alpha_copy[kAlphas * kMaxLanes] = {};
  std::memcpy(dst_copy, dst + i, n - i);
  std::memcpy(src_copy, src + i, n - i);
  std::memcpy(alpha_copy, alpha + kAlphas * i, kAlphas * (n - i));
  step(dst_copy, src_copy, alpha_copy);
  std::memcpy(dst + i, dst_copy, n - i);
}

void BlendLuma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
               std::size_t n) {
  ForEachStep<1>(dst, src, alpha, n,
                 [](std::uint8_t *to, const std::uint8_t *from, const std::uint8_t *a) HWY_ATTR {
                   constexpr Bytes d;
                   BlendStep(d, to, from, hn::LoadU(d, a));
                 });
}

void BlendChroma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                 std::size_t n) {
  ForEachStep<2>(dst, src, alpha, n,
                 [](std::uint8_t *to, const std::uint8_t *from, const std::uint8_t *a) HWY_ATTR {
                   constexpr Bytes d;
                   BlendStep(d, to, from, PairMeans(d, a));
                 });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::vectorizer
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::vectorizer {

HWY_EXPORT(BlendLuma);
void blend_luma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                std::size_t n) {
  HWY_DYNAMIC_DISPATCH(BlendLuma)(dst, src, alpha, n);
}

HWY_EXPORT(BlendChroma);
void blend_chroma(std::uint8_t *dst, const std::uint8_t *src, const std::uint8_t *alpha,
                  std::size_t n) {
  HWY_DYNAMIC_DISPATCH(BlendChroma)(dst, src, alpha, n);
}

}  // namespace nox::vectorizer
#endif  // HWY_ONCE
