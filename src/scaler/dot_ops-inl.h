// Sums of products of neighbouring lanes, which every vector instruction set has in a form of its
// own: single instructions on x86, a few portable ones elsewhere, the same bits everywhere.
//
// Included once for each target, from kernel files only.
#if defined(SCALER_DOT_OPS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef SCALER_DOT_OPS_INL_H_
#undef SCALER_DOT_OPS_INL_H_
#else
#define SCALER_DOT_OPS_INL_H_
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace nox::scaler {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The lane-wise sum of neighbours: u16 lane i is bytes[2i] + bytes[2i + 1].
template <class V8>
HWY_INLINE auto sums_of_pairs(V8 bytes) {
  const hn::RepartitionToWide<hn::DFromV<V8>> d16;
  const auto words = hn::BitCast(d16, bytes);
  return hn::Add(hn::And(words, hn::Set(d16, 0xFF)), hn::ShiftRight<8>(words));
}

// i32 lane i is words[2i] * weights[2i] + words[2i + 1] * weights[2i + 1], words and weights signed
// 16-bit.
template <class V16>
HWY_INLINE auto dot_pairs(V16 words, V16 weights) {
  const hn::RepartitionToWide<hn::DFromV<V16>> d32;
  const auto odd_first = hn::BitCast(d32, words);
  const auto odd_weights = hn::BitCast(d32, weights);
  const auto odd = hn::Mul(hn::ShiftRight<16>(odd_first), hn::ShiftRight<16>(odd_weights));
  const auto even = hn::Mul(hn::ShiftRight<16>(hn::ShiftLeft<16>(odd_first)),
                            hn::ShiftRight<16>(hn::ShiftLeft<16>(odd_weights)));
  return hn::Add(even, odd);
}

}  // namespace HWY_NAMESPACE
}  // namespace nox::scaler
HWY_AFTER_NAMESPACE();

#endif  // SCALER_DOT_OPS_INL_H_
