// Operations on neighbouring lanes that Highway 1.0.3 has no name for: single instructions from
// SSSE3 on, a few portable ones with anything else (SSE2 and what is not x86), the same bits
// everywhere.
//
// Included once for each target, from kernel files only.
#if defined(VIDEO_PAIR_OPS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef VIDEO_PAIR_OPS_INL_H_
#undef VIDEO_PAIR_OPS_INL_H_
#else
#define VIDEO_PAIR_OPS_INL_H_
#endif

#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace nox::video {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// dot_byte_pairs(bytes, weights): i16 lane i is bytes[2i] * weights[2i] + bytes[2i + 1] *
// weights[2i + 1], bytes unsigned and weights signed. The sum must fit.
//
// add_dot_word_pairs(sum, words, weights): i32 lane i is sum[i] + words[2i] * weights[2i] +
// words[2i + 1] * weights[2i + 1], all signed.
//
// add_byte_pairs(bytes): i16 lane i is bytes[2i] + bytes[2i + 1], unsigned.
//
// clamp_to_bytes(a, b, c, d): the lanes of four i32 vectors, one after the other, each clamped to 0
// to 255.
//
// clamp_blocks(low, high): for every 16 bytes of a vector, the low vector's eight i16 numbers of
// that place and then the high one's, each clamped to -128 to 127.
#define NOX_HAVE_SSSE3 (HWY_ARCH_X86 && HWY_TARGET <= HWY_SSSE3)
#if NOX_HAVE_SSSE3

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

HWY_INLINE hn::Vec128<std::int8_t> clamp_blocks(hn::Vec128<std::int16_t> low,
                                                hn::Vec128<std::int16_t> high) {
  return hn::Vec128<std::int8_t>{_mm_packs_epi16(low.raw, high.raw)};
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

HWY_INLINE hn::Vec256<std::int8_t> clamp_blocks(hn::Vec256<std::int16_t> low,
                                                hn::Vec256<std::int16_t> high) {
  return hn::Vec256<std::int8_t>{_mm256_packs_epi16(low.raw, high.raw)};
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

HWY_INLINE hn::Vec512<std::int8_t> clamp_blocks(hn::Vec512<std::int16_t> low,
                                                hn::Vec512<std::int16_t> high) {
  return hn::Vec512<std::int8_t>{_mm512_packs_epi16(low.raw, high.raw)};
}

#endif  // AVX3

template <class VU8>
HWY_INLINE auto add_byte_pairs(VU8 bytes) {
  return dot_byte_pairs(bytes, hn::Set(hn::RebindToSigned<hn::DFromV<VU8>>(), 1));
}

#else  // vectors of 16 bytes

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

template <class VU8>
HWY_INLINE auto add_byte_pairs(VU8 bytes) {
  const hn::RepartitionToWide<hn::DFromV<VU8>> du16;
  const hn::RebindToSigned<decltype(du16)> d16;
  const auto words = hn::BitCast(du16, bytes);
  return hn::BitCast(d16, hn::Add(hn::And(words, hn::Set(du16, 0xFF)), hn::ShiftRight<8>(words)));
}

template <class V16>
HWY_INLINE auto clamp_blocks(V16 low, V16 high) {
  const hn::Repartition<std::int8_t, hn::DFromV<V16>> d8;
  const hn::Half<decltype(d8)> half;
  return hn::Combine(d8, hn::DemoteTo(half, high), hn::DemoteTo(half, low));
}

#endif  // NOX_HAVE_SSSE3

}  // namespace HWY_NAMESPACE
}  // namespace nox::video
HWY_AFTER_NAMESPACE();

#endif  // VIDEO_PAIR_OPS_INL_H_
