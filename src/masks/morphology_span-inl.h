// Pieces of a mask row, one vector wide, with the bits that follow each word at hand. Included once
// for each instruction set.
#if defined(MASKS_MORPHOLOGY_SPAN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef MASKS_MORPHOLOGY_SPAN_INL_H_
#undef MASKS_MORPHOLOGY_SPAN_INL_H_
#else
#define MASKS_MORPHOLOGY_SPAN_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"
#include "masks/morphology_pass.h"

HWY_BEFORE_NAMESPACE();
namespace nox::masks::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Dilation ORs the bits under an element, erosion ANDs them. Bits outside the mask are 0 for both.
struct Dilate {
  template <class V>
  static HWY_INLINE V Join(V a, V b) {
    return hn::Or(a, b);
  }
};

struct Erode {
  template <class V>
  static HWY_INLINE V Join(V a, V b) {
    return hn::And(a, b);
  }
};

// A vector of 64-bit words of a row and, lane for lane, the word that follows each of them. An
// element and its anchor reach at most 47 bits into the following word, so `next` need not know its
// own successor: shifts let 0 into its upper bits, which nobody looks at.
template <class V>
struct Words {
  // Written out, so that they are compiled for the instruction set: what the compiler makes is not.
  HWY_INLINE Words() {}
  HWY_INLINE Words(V words, V following) : here(words), next(following) {}

  V here;
  V next;
};

// Bit i of each word becomes the row's bit i + kBits.
template <int kBits, class V>
HWY_INLINE V bits_from(const Words<V> &words) {
#if HWY_TARGET <= HWY_AVX3_DL
  if constexpr (sizeof(words.here.raw) == sizeof(__m512i)) {
    return V{_mm512_shrdi_epi64(words.here.raw, words.next.raw, kBits)};
  }
#endif
  return hn::Or(hn::ShiftRight<kBits>(words.here), hn::ShiftLeft<64 - kBits>(words.next));
}

// Bit i becomes Join of the row's bits i and i + kBits.
template <class Op, int kBits, class V>
HWY_INLINE Words<V> join_shifted(const Words<V> &words) {
  return {Op::Join(words.here, bits_from<kBits>(words)),
          Op::Join(words.next, hn::ShiftRight<kBits>(words.next))};
}

// Each lane takes the value of the lane above it, and the last one 0.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V following_lanes(D d, V v) {
#if HWY_TARGET <= HWY_AVX3
  if constexpr (hn::MaxLanes(D()) == 8) {
    return V{_mm512_alignr_epi64(hn::Zero(d).raw, v.raw, 1)};
  }
#endif
#if HWY_TARGET <= HWY_AVX2
  if constexpr (hn::MaxLanes(D()) == 4) {
    const hn::Repartition<std::uint8_t, D> d8;
    const auto upper = hn::BitCast(d8, hn::ConcatLowerUpper(d, hn::Zero(d), v));
    return hn::BitCast(d, hn::CombineShiftRightBytes<8>(d8, upper, hn::BitCast(d8, v)));
  }
#endif
  if constexpr (hn::MaxLanes(D()) == 2) return hn::ShiftRightLanes<1>(d, v);
}

// A span whose following words are all in the row's memory.
template <class D>
class InnerSpan {
 public:
  explicit InnerSpan(D d) : d_(d) {}
  HWY_INLINE Words<hn::Vec<D>> Load(const std::uint8_t *bytes) const {
    return {LoadWords(bytes), LoadWords(bytes + sizeof(std::uint64_t))};
  }
  HWY_INLINE void Store(hn::Vec<D> v, std::uint8_t *bytes) const {
    const hn::Repartition<std::uint8_t, D> d8;
    hn::StoreU(hn::BitCast(d8, v), d8, bytes);
  }
  HWY_INLINE hn::Vec<D> LoadWords(const std::uint8_t *bytes) const {
    const hn::Repartition<std::uint8_t, D> d8;
    return hn::BitCast(d_, hn::LoadU(d8, bytes));
  }

 private:
  D d_;
};

// The span that ends a row: what follows its last word is 0.
template <class D>
class LastSpan {
 public:
  explicit LastSpan(D d) : d_(d) {}
  HWY_INLINE Words<hn::Vec<D>> Load(const std::uint8_t *bytes) const {
    const auto words = InnerSpan<D>(d_).LoadWords(bytes);
    return {words, following_lanes(d_, words)};
  }
  HWY_INLINE void Store(hn::Vec<D> v, std::uint8_t *bytes) const {
    InnerSpan<D>(d_).Store(v, bytes);
  }

 private:
  D d_;
};

#if HWY_TARGET <= HWY_AVX3
// A row shorter than a vector; only here are masked bytes as cheap as whole vectors.
template <class D>
class ShortSpan {
 public:
  ShortSpan(D d, std::int32_t count)
      : d_(d), present_(hn::FirstN(Bytes(), static_cast<std::size_t>(count))) {}
  HWY_INLINE Words<hn::Vec<D>> Load(const std::uint8_t *bytes) const {
    const auto words = hn::BitCast(d_, hn::MaskedLoad(present_, Bytes(), bytes));
    return {words, following_lanes(d_, words)};
  }
  HWY_INLINE void Store(hn::Vec<D> v, std::uint8_t *bytes) const {
    hn::BlendedStore(hn::BitCast(Bytes(), v), present_, Bytes(), bytes);
  }

 private:
  using Bytes = hn::Repartition<std::uint8_t, D>;
  D d_;
  hn::Mask<Bytes> present_;
};
#endif

// Cuts rows of `bytes` bytes into spans and calls sweep(span, offset) for each of them. Spans may
// overlap; every one gives all its bits exactly.
template <class D, class Sweep>
HWY_INLINE void for_each_span(D d, std::int32_t bytes, const Sweep &sweep) {
  constexpr std::int32_t kWord = sizeof(std::uint64_t);
  const auto width = static_cast<std::int32_t>(hn::Lanes(d)) * kWord;
  // Rows are 14 n + 2, 12 n + 4 or 8 n + 8 bytes: never longer than a vector of 16, 32 or 64 bytes
  // by less than a word, so an inner span fits in front of the last one.
  const std::int32_t last = bytes - width;
  for (std::int32_t at = 0; at < last; at += width) {
    sweep(InnerSpan<D>(d), std::min(at, last - kWord));
  }
  sweep(LastSpan<D>(d), last);
}

// The same for any row length, with the widest vectors that fit.
template <class Sweep>
HWY_INLINE void for_each_span_of_row(std::int32_t bytes, const Sweep &sweep) {
  const hn::ScalableTag<std::uint64_t> d;
  if (bytes >= static_cast<std::int32_t>(hn::Lanes(d) * sizeof(std::uint64_t))) {
    for_each_span(d, bytes, sweep);
    return;
  }
#if HWY_TARGET <= HWY_AVX3
  sweep(ShortSpan<decltype(d)>(d, bytes), 0);
#else
  for_each_span(hn::FixedTag<std::uint64_t, 2>(), bytes, sweep);
#endif
}

}  // namespace
}  // namespace nox::masks::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // MASKS_MORPHOLOGY_SPAN_INL_H_
