// Elements of any shape. Of each source row the terms of the plan are computed once, joined to the
// different row patterns, and each pattern joins the output rows that it lies under. These wait in
// a ring of one vector each, from their first source row to their last.
#include "masks/morphology_general.h"

#include <bit>
#include <memory>
#include <span>

#include "video/aligned_alloc.h"

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "masks/morphology_general.cc"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
#include "masks/morphology_span-inl.h"

#ifndef MASKS_MORPHOLOGY_GENERAL_ONCE_
#define MASKS_MORPHOLOGY_GENERAL_ONCE_
namespace nox::masks {
namespace {

struct AlignedFree {
  void operator()(std::uint8_t *block) const { nox_aligned_free(block); }
};
using Scratch = std::unique_ptr<std::uint8_t[], AlignedFree>;

Scratch make_scratch(std::size_t size) {
  return Scratch(static_cast<std::uint8_t *>(nox_aligned_alloc(kNoxAlignment, size)));
}

}  // namespace
}  // namespace nox::masks
#endif  // MASKS_MORPHOLOGY_GENERAL_ONCE_

HWY_BEFORE_NAMESPACE();
namespace nox::masks::HWY_NAMESPACE {
namespace {

struct Overwrite {
  template <class Span, class V>
  static HWY_INLINE void Store(const Span &span, V v, std::uint8_t *bytes) {
    span.Store(v, bytes);
  }
};

struct Suppress {
  template <class Span, class V>
  static HWY_INLINE void Store(const Span &span, V v, std::uint8_t *bytes) {
    span.Store(hn::AndNot(v, span.Load(bytes).here), bytes);
  }
};

// As bits_from of the spans, for a count known at run time, 1 to 63. From AVX2 on, a count for each
// lane is one instruction less than one count for all.
template <class V>
HWY_INLINE V bits_from_same(const Words<V> &words, int bits) {
#if HWY_TARGET <= HWY_AVX3_DL
  if constexpr (sizeof(words.here.raw) == sizeof(__m512i)) {
    const __m512i counts = _mm512_set1_epi64(bits);
    return V{_mm512_shrdv_epi64(words.here.raw, words.next.raw, counts)};
  }
#endif
#if HWY_TARGET <= HWY_AVX2
  const hn::DFromV<V> d;
  return hn::Or(hn::Shr(words.here, hn::Set(d, static_cast<std::uint64_t>(bits))),
                hn::Shl(words.next, hn::Set(d, static_cast<std::uint64_t>(64 - bits))));
#else
  return hn::Or(hn::ShiftRightSame(words.here, bits), hn::ShiftLeftSame(words.next, 64 - bits));
#endif
}

template <class Op, class Output>
class GeneralSweep {
 public:
  // `patterns` and `ring` have room for one vector for each pattern and ring row.
  GeneralSweep(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x,
               std::uint8_t *patterns, std::uint8_t *ring, std::size_t ring_rows)
      : pass_(pass),
        highest_level_(plan.highest_level),
        terms_(plan.terms),
        term_indices_(plan.term_indices.data()),
        patterns_(plan.patterns),
        rows_(plan.rows),
        lead_(8 * pass.lane_bytes - anchor_x),
        pattern_bits_(patterns),
        ring_(ring),
        ring_mask_(ring_rows - 1) {}

  template <template <class> class Span, class D>
  HWY_INLINE void operator()(const Span<D> &span, std::ptrdiff_t at) const {
    const GeneralSweep sweep = *this;  // the compiler would reload it after every store
    sweep.SweepDown(span, at);
  }

 private:
  template <template <class> class Span, class D>
  HWY_INLINE void SweepDown(const Span<D> &span, std::ptrdiff_t at) const {
    const D d;
    const auto zero = hn::Zero(d);
    const std::uint8_t *src = pass_.src + at - pass_.lane_bytes;
    std::uint8_t *dst = pass_.dst + at;
    const std::ptrdiff_t lag = rows_.back().offset;
    for (std::ptrdiff_t y = rows_.front().offset; y < pass_.height + lag; ++y) {
      Words<hn::Vec<D>> source{zero, zero};
      if (y >= 0 && y < pass_.height) source = span.Load(src + y * pass_.src_stride);
      JoinPatterns(d, source);
      const auto finished = JoinRows(d, y);
      if (y >= lag) Output::Store(span, finished, dst + (y - lag) * pass_.dst_stride);
    }
  }

  template <class D>
  static HWY_INLINE std::uint64_t *Slot(D d, std::uint8_t *base, std::size_t index) {
    return reinterpret_cast<std::uint64_t *>(base) + index * hn::Lanes(d);
  }

  // The row's terms, and from them its patterns.
  template <class D, class V>
  HWY_INLINE void JoinPatterns(D d, const Words<V> &source) const {
    Words<V> levels[kMaxLevel + 1];
    levels[0] = source;
    if (highest_level_ > 0) levels[1] = join_shifted<Op, 1>(levels[0]);
    if (highest_level_ > 1) levels[2] = join_shifted<Op, 2>(levels[1]);
    if (highest_level_ > 2) levels[3] = join_shifted<Op, 4>(levels[2]);
    if (highest_level_ > 3) levels[4] = join_shifted<Op, 8>(levels[3]);
    V terms[kMaxTerms];
    for (std::size_t i = 0; i < terms_.size(); ++i) {
      terms[i] = bits_from_same(levels[terms_[i].level], lead_ + terms_[i].shift);
    }
    for (std::size_t i = 0; i < patterns_.size(); ++i) {
      const std::size_t *index = term_indices_ + patterns_[i].first;
      V joined = JoinGroup(terms, index);
      for (std::size_t j = kTermGroup; j < patterns_[i].count; j += kTermGroup) {
        joined = Op::Join(joined, JoinGroup(terms, index + j));
      }
      hn::Store(joined, d, Slot(d, pattern_bits_, i));
    }
  }

  template <class V>
  static HWY_INLINE V JoinGroup(const V *terms, const std::size_t *index) {
    static_assert(kTermGroup == 4);
    return Op::Join(Op::Join(terms[index[0]], terms[index[1]]),
                    Op::Join(terms[index[2]], terms[index[3]]));
  }

  // Joins source row y to the output rows in the ring; returns the one that it finishes.
  template <class D>
  HWY_INLINE hn::Vec<D> JoinRows(D d, std::ptrdiff_t y) const {
    auto joined = hn::Load(d, Slot(d, pattern_bits_, rows_[0].pattern));
    hn::Store(joined, d, RingSlot(d, y - rows_[0].offset));
    for (std::size_t i = 1; i < rows_.size(); ++i) {
      std::uint64_t *slot = RingSlot(d, y - rows_[i].offset);
      joined = Op::Join(hn::Load(d, slot), hn::Load(d, Slot(d, pattern_bits_, rows_[i].pattern)));
      hn::Store(joined, d, slot);
    }
    return joined;
  }

  template <class D>
  HWY_INLINE std::uint64_t *RingSlot(D d, std::ptrdiff_t y) const {
    return Slot(d, ring_, static_cast<std::size_t>(y) & ring_mask_);
  }

  MorphologyPass pass_;
  std::int32_t highest_level_;
  std::span<const RunTerm> terms_;
  const std::size_t *term_indices_;
  std::span<const RowPattern> patterns_;
  std::span<const ElementRow> rows_;
  std::int32_t lead_;
  std::uint8_t *pattern_bits_;
  std::uint8_t *ring_;
  std::size_t ring_mask_;
};

template <class Op, class Output>
HWY_INLINE void sweep_general(const MorphologyPass &pass, const ElementPlan &plan,
                              std::int32_t anchor_x) {
  const std::int32_t height = plan.rows.back().offset - plan.rows.front().offset + 1;
  const std::size_t ring_rows = std::bit_ceil(static_cast<std::size_t>(height));
  const Scratch patterns = make_scratch(plan.patterns.size() * HWY_MAX_BYTES);
  const Scratch ring = make_scratch(ring_rows * HWY_MAX_BYTES);
  for_each_span_of_row(pass.bytes, GeneralSweep<Op, Output>(pass, plan, anchor_x, patterns.get(),
                                                            ring.get(), ring_rows));
}

void ErodeGeneral(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x) {
  sweep_general<Erode, Overwrite>(pass, plan, anchor_x);
}

void DilateGeneral(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x) {
  sweep_general<Dilate, Overwrite>(pass, plan, anchor_x);
}

void SuppressGeneral(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x) {
  sweep_general<Dilate, Suppress>(pass, plan, anchor_x);
}

}  // namespace
}  // namespace nox::masks::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::masks {

HWY_EXPORT(ErodeGeneral);
HWY_EXPORT(DilateGeneral);
HWY_EXPORT(SuppressGeneral);

void erode_general(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x) {
  HWY_DYNAMIC_DISPATCH(ErodeGeneral)(pass, plan, anchor_x);
}

void dilate_general(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x) {
  HWY_DYNAMIC_DISPATCH(DilateGeneral)(pass, plan, anchor_x);
}

void suppress_general(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x) {
  HWY_DYNAMIC_DISPATCH(SuppressGeneral)(pass, plan, anchor_x);
}

}  // namespace nox::masks
#endif  // HWY_ONCE
