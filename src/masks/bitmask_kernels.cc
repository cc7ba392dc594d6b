#include "masks/bitmask_kernels.h"

#include <algorithm>
#include <cstring>

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "masks/bitmask_kernels.cc"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace nox::masks::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

struct Above {
  template <class V>
  HWY_INLINE auto operator()(V samples, V limit) const {
    return hn::Gt(samples, limit);
  }
};

struct Under {
  template <class V>
  HWY_INLINE auto operator()(V samples, V limit) const {
    return hn::Lt(samples, limit);
  }
};

using Group = hn::FixedTag<std::uint8_t, kThresholdGroup>;

// The samples of a group of which only `count` belong to the plane; the bits of the others are 0.
template <class Compare>
HWY_INLINE void threshold_part(const std::uint8_t *samples, std::ptrdiff_t count,
                               std::uint8_t limit, std::uint8_t *bits) {
  const Group d;
  HWY_ALIGN std::uint8_t copy[kThresholdGroup] = {};
  std::memcpy(copy, samples, static_cast<std::size_t>(count));
  const auto present = hn::FirstN(d, static_cast<std::size_t>(count));
  const auto passed = Compare()(hn::Load(d, copy), hn::Set(d, limit));
  hn::StoreMaskBits(d, hn::And(passed, present), bits);
}

template <class Compare, class D>
HWY_INLINE void threshold_vector(D d, const std::uint8_t *samples, hn::Vec<D> limit,
                                 std::uint8_t *bits) {
  hn::StoreMaskBits(d, Compare()(hn::LoadU(d, samples), limit), bits);
}

template <class Compare>
HWY_INLINE void threshold_row(const std::uint8_t *samples, std::ptrdiff_t count, std::uint8_t limit,
                              std::uint8_t *bits) {
  const hn::ScalableTag<std::uint8_t> d;
  const Group group;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  const auto wide_limit = hn::Set(d, limit);
  // Two vectors a turn: one is too little work beside the loop's own.
  for (; count >= 2 * lanes; count -= 2 * lanes) {
    threshold_vector<Compare>(d, samples, wide_limit, bits);
    threshold_vector<Compare>(d, samples + lanes, wide_limit, bits + lanes / 8);
    samples += 2 * lanes;
    bits += 2 * lanes / 8;
  }
  if (count >= lanes) {
    threshold_vector<Compare>(d, samples, wide_limit, bits);
    samples += lanes;
    bits += lanes / 8;
    count -= lanes;
  }
  const auto group_limit = hn::Set(group, limit);
  for (; count >= kThresholdGroup; count -= kThresholdGroup) {
    threshold_vector<Compare>(group, samples, group_limit, bits);
    samples += kThresholdGroup;
    bits += kThresholdGroup / 8;
  }
  if (count > 0) threshold_part<Compare>(samples, count, limit, bits);
}

template <class Compare>
HWY_INLINE void threshold_rows(BitMask *dst, const SamplePlane &plane, std::uint8_t limit) {
  const std::ptrdiff_t width =
      (std::ptrdiff_t{dst->width} + kThresholdGroup - 1) / kThresholdGroup * kThresholdGroup;
  const std::uint8_t *samples = plane.samples;
  std::uint8_t *bits = dst->data;
  // Locals: the compiler would reload the fields after every store of bits.
  const std::ptrdiff_t sample_stride = plane.stride;
  const std::ptrdiff_t bit_stride = dst->stride;
  std::ptrdiff_t readable = plane.extent;
  for (std::int32_t rows = dst->height; rows > 0; --rows) {
    threshold_row<Compare>(samples, std::min(width, readable), limit, bits);
    samples += sample_stride;
    readable -= sample_stride;
    bits += bit_stride;
  }
}

void ThresholdAbove(BitMask *dst, const SamplePlane &plane, std::uint8_t limit) {
  threshold_rows<Above>(dst, plane, limit);
}

void ThresholdUnder(BitMask *dst, const SamplePlane &plane, std::uint8_t limit) {
  threshold_rows<Under>(dst, plane, limit);
}

struct OrOp {
  template <class V>
  HWY_INLINE V operator()(V a, V b) const {
    return hn::Or(a, b);
  }
};

struct AndOp {
  template <class V>
  HWY_INLINE V operator()(V a, V b) const {
    return hn::And(a, b);
  }
};

struct AndNotOp {
  template <class V>
  HWY_INLINE V operator()(V a, V b) const {
    return hn::AndNot(b, a);
  }
};

// Combines `count` bytes, a multiple of 8: whole vectors first, the rest in ever shorter ones.
template <class Op, std::size_t kLanes>
HWY_INLINE void combine_row(std::uint8_t *dst, const std::uint8_t *a, const std::uint8_t *b,
                            std::ptrdiff_t count) {
  const hn::CappedTag<std::uint8_t, kLanes> d;
  const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(d));
  std::ptrdiff_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    hn::StoreU(Op()(hn::LoadU(d, a + i), hn::LoadU(d, b + i)), d, dst + i);
  }
  if constexpr (kLanes > sizeof(std::uint64_t)) {
    combine_row<Op, kLanes / 2>(dst + i, a + i, b + i, count - i);
  }
}

template <class Op>
HWY_INLINE void combine_rows(BitMask *dst, const BitMask *a, const BitMask *b) {
  const std::ptrdiff_t count = (std::ptrdiff_t{dst->width} + 63) / 64 * 8;
  for (std::ptrdiff_t y = 0; y < dst->height; ++y) {
    combine_row<Op, HWY_MAX_BYTES>(dst->data + y * dst->stride, a->data + y * a->stride,
                                   b->data + y * b->stride, count);
  }
}

void OrWords(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_rows<OrOp>(dst, a, b);
}

void AndWords(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_rows<AndOp>(dst, a, b);
}

void AndNotWords(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_rows<AndNotOp>(dst, a, b);
}

}  // namespace
}  // namespace nox::masks::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::masks {

HWY_EXPORT(ThresholdAbove);
HWY_EXPORT(ThresholdUnder);
HWY_EXPORT(OrWords);
HWY_EXPORT(AndWords);
HWY_EXPORT(AndNotWords);

void threshold_above(BitMask *dst, const SamplePlane &plane, std::uint8_t limit) {
  HWY_DYNAMIC_DISPATCH(ThresholdAbove)(dst, plane, limit);
}

void threshold_under(BitMask *dst, const SamplePlane &plane, std::uint8_t limit) {
  HWY_DYNAMIC_DISPATCH(ThresholdUnder)(dst, plane, limit);
}

void or_words(BitMask *dst, const BitMask *a, const BitMask *b) {
  HWY_DYNAMIC_DISPATCH(OrWords)(dst, a, b);
}

void and_words(BitMask *dst, const BitMask *a, const BitMask *b) {
  HWY_DYNAMIC_DISPATCH(AndWords)(dst, a, b);
}

void and_not_words(BitMask *dst, const BitMask *a, const BitMask *b) {
  HWY_DYNAMIC_DISPATCH(AndNotWords)(dst, a, b);
}

}  // namespace nox::masks
#endif  // HWY_ONCE
