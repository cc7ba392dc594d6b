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

// dot_byte_pairs(bytes, weights): i16 lane i is bytes[2i] * weights[2i] + bytes[2i + 1] *
// weights[2i + 1], bytes unsigned and weights signed. The sum must fit.
//
// add_dot_word_pairs(sum, words, weights): i32 lane i is sum[i] + words[2i] * weights[2i] +
// words[2i + 1] * weights[2i + 1], all signed.
//
// clamp_to_bytes(a, b, c, d): the lanes of four i32 vectors, one after the other, each clamped to 0
// to 255.
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_SSSE3

HWY_INLINE hn::Vec128<std::int16_t> dot_byte_pairs(hn::Vec128<std::uint8_t> bytes,
                                                   hn::Vec128<std::int8_t> weights) {
  return hn::Vec128<std::int16_t>{_mm_maddubs_epi16(bytes.raw, weights.raw)};
}

HWY_INLINE hn::Vec128<std::int32_t> add_dot_word_pairs(hn::Vec128<std::int32_t> sum,
                                                       hn::Vec128<std::int16_t> words,
                                                       hn::Vec128<std::int16_t> weights) {
  return sum + hn::Vec128<std::int32_t>{_mm_madd_epi16(words.raw, weights.raw)};
}

HWY_INLINE hn::Vec128<std::uint8_t> clamp_to_bytes(hn::Vec128<std::int32_t> a,
                                                   hn::Vec128<std::int32_t> b,
                                                   hn::Vec128<std::int32_t> c,
                                                   hn::Vec128<std::int32_t> d) {
  return hn::Vec128<std::uint8_t>{
      _mm_packus_epi16(_mm_packs_epi32(a.raw, b.raw), _mm_packs_epi32(c.raw, d.raw))};
}

#if HWY_TARGET <= HWY_AVX2

HWY_INLINE hn::Vec256<std::int16_t> dot_byte_pairs(hn::Vec256<std::uint8_t> bytes,
                                                   hn::Vec256<std::int8_t> weights) {
  return hn::Vec256<std::int16_t>{_mm256_maddubs_epi16(bytes.raw, weights.raw)};
}

HWY_INLINE hn::Vec256<std::int32_t> add_dot_word_pairs(hn::Vec256<std::int32_t> sum,
                                                       hn::Vec256<std::int16_t> words,
                                                       hn::Vec256<std::int16_t> weights) {
  return sum + hn::Vec256<std::int32_t>{_mm256_madd_epi16(words.raw, weights.raw)};
}

// Wider packs work on each 16-byte block and leave its four bytes of every source together.
HWY_INLINE hn::Vec256<std::uint8_t> clamp_to_bytes(hn::Vec256<std::int32_t> a,
                                                   hn::Vec256<std::int32_t> b,
                                                   hn::Vec256<std::int32_t> c,
                                                   hn::Vec256<std::int32_t> d) {
  const __m256i blocks =
      _mm256_packus_epi16(_mm256_packs_epi32(a.raw, b.raw), _mm256_packs_epi32(c.raw, d.raw));
  const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  return hn::Vec256<std::uint8_t>{_mm256_permutevar8x32_epi32(blocks, order)};
}

#endif  // AVX2
#if HWY_TARGET <= HWY_AVX3

HWY_INLINE hn::Vec512<std::int16_t> dot_byte_pairs(hn::Vec512<std::uint8_t> bytes,
                                                   hn::Vec512<std::int8_t> weights) {
  return hn::Vec512<std::int16_t>{_mm512_maddubs_epi16(bytes.raw, weights.raw)};
}

HWY_INLINE hn::Vec512<std::int32_t> add_dot_word_pairs(hn::Vec512<std::int32_t> sum,
                                                       hn::Vec512<std::int16_t> words,
                                                       hn::Vec512<std::int16_t> weights) {
  return sum + hn::Vec512<std::int32_t>{_mm512_madd_epi16(words.raw, weights.raw)};
}

HWY_INLINE hn::Vec512<std::uint8_t> clamp_to_bytes(hn::Vec512<std::int32_t> a,
                                                   hn::Vec512<std::int32_t> b,
                                                   hn::Vec512<std::int32_t> c,
                                                   hn::Vec512<std::int32_t> d) {
  const __m512i blocks =
      _mm512_packus_epi16(_mm512_packs_epi32(a.raw, b.raw), _mm512_packs_epi32(c.raw, d.raw));
  const __m512i order = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  return hn::Vec512<std::uint8_t>{_mm512_permutexvar_epi32(order, blocks)};
}

#endif  // AVX3
#else   // not x86

template <class VU8, class VI8>
HWY_INLINE auto dot_byte_pairs(VU8 bytes, VI8 weights) {
  const hn::RepartitionToWide<hn::DFromV<VU8>> du16;
  const hn::RebindToSigned<decltype(du16)> d16;
  const auto words = hn::BitCast(du16, bytes);
  const auto odd_weights = hn::BitCast(d16, weights);
  const auto even = hn::BitCast(d16, hn::And(words, hn::Set(du16, 0xFF)));
  const auto odd = hn::BitCast(d16, hn::ShiftRight<8>(words));
  return hn::Add(hn::Mul(even, hn::ShiftRight<8>(hn::ShiftLeft<8>(odd_weights))),
                 hn::Mul(odd, hn::ShiftRight<8>(odd_weights)));
}

template <class V32, class V16>
HWY_INLINE V32 add_dot_word_pairs(V32 sum, V16 words, V16 weights) {
  const hn::DFromV<V32> d32;
  const auto odd_words = hn::BitCast(d32, words);
  const auto odd_weights = hn::BitCast(d32, weights);
  const auto odd = hn::Mul(hn::ShiftRight<16>(odd_words), hn::ShiftRight<16>(odd_weights));
  const auto even = hn::Mul(hn::ShiftRight<16>(hn::ShiftLeft<16>(odd_words)),
                            hn::ShiftRight<16>(hn::ShiftLeft<16>(odd_weights)));
  return hn::Add(sum, hn::Add(even, odd));
}

template <class V32>
HWY_INLINE auto clamp_to_bytes(V32 a, V32 b, V32 c, V32 d) {
  using D32 = hn::DFromV<V32>;
  const hn::Repartition<std::uint8_t, D32> d8;
  const hn::Half<decltype(d8)> half8;
  const hn::Repartition<std::int16_t, D32> d16;
  const hn::Half<decltype(d16)> half16;
  const auto low = hn::Combine(d16, hn::DemoteTo(half16, b), hn::DemoteTo(half16, a));
  const auto high = hn::Combine(d16, hn::DemoteTo(half16, d), hn::DemoteTo(half16, c));
  return hn::Combine(d8, hn::DemoteTo(half8, high), hn::DemoteTo(half8, low));
}

#endif  // not x86

}  // namespace HWY_NAMESPACE
}  // namespace nox::scaler
HWY_AFTER_NAMESPACE();

#endif  // SCALER_DOT_OPS_INL_H_
