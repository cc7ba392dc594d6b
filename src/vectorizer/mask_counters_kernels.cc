#include "vectorizer/mask_counters_kernels.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "vectorizer/mask_counters_kernels.cc"
#include <hwy/foreach_target.h>
// After foreach_target.h, which sets the target.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace nox::vectorizer {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::CappedTag<std::uint64_t, kBlockWords>;
using WordVec = hn::Vec<Words>;

// A limit is an int or an integral_constant; with the latter the loops over the planes unroll.
template <class Limit>
HWY_INLINE bool limit_has(Limit limit, int bit) {
  return ((static_cast<std::int32_t>(limit) >> bit) & 1) != 0;
}

// Whether the counters are at the limit. None is above, so having all its bits is being it.
template <class Limit>
HWY_INLINE WordVec AtLimit(Words d, Limit limit, const std::uint64_t *plane, std::size_t words) {
  WordVec at = hn::Set(d, ~std::uint64_t{0});
  for (int k = 0; k < counter_planes(limit); ++k) {
    if (limit_has(limit, k))
      at = hn::And(at, hn::Load(d, plane + words * static_cast<unsigned>(k)));
  }
  return at;
}

template <class Limit>
HWY_INLINE WordVec StepRuns(Words d, Limit limit, std::uint64_t *plane, std::size_t words,
                            WordVec set) {
  WordVec carry = hn::AndNot(AtLimit(d, limit, plane, words), set);
  WordVec answer = set;
  for (int k = 0; k < counter_planes(limit); ++k, plane += words) {
    const WordVec old = hn::Load(d, plane);
    const WordVec now = hn::And(hn::Xor(old, carry), set);
    carry = hn::And(carry, old);
    if (limit_has(limit, k)) answer = hn::And(answer, now);
    hn::Store(now, d, plane);
  }
  return answer;
}

template <class Limit>
HWY_INLINE WordVec StepHolds(Words d, Limit limit, std::uint64_t *plane, std::size_t words,
                             WordVec set) {
  const int planes = counter_planes(limit);
  WordVec above_0 = hn::Zero(d);
  for (int k = 0; k < planes; ++k) {
    above_0 = hn::Or(above_0, hn::Load(d, plane + words * static_cast<unsigned>(k)));
  }
  WordVec borrow = hn::AndNot(set, above_0);
  WordVec answer = hn::Zero(d);
  for (int k = 0; k < planes; ++k, plane += words) {
    const WordVec old = hn::Load(d, plane);
    const WordVec less = hn::Xor(old, borrow);
    borrow = hn::AndNot(old, borrow);
    const WordVec now = limit_has(limit, k) ? hn::Or(less, set) : hn::AndNot(set, less);
    answer = hn::Or(answer, now);
    hn::Store(now, d, plane);
  }
  return answer;
}

template <class Limit>
void RunRows(std::uint64_t *planes, Limit limit, const BitRows &bits) {
  const Words d;
  for (std::int32_t y = 0; y < bits.count; ++y) {
    std::uint64_t *row = bits.row(y);
    for (std::size_t i = 0; i < bits.words; i += hn::Lanes(d)) {
      hn::Store(StepRuns(d, limit, planes + i, bits.words, hn::Load(d, row + i)), d, row + i);
    }
    planes += bits.words * static_cast<unsigned>(counter_planes(limit));
  }
}

template <class Limit>
void HoldRows(std::uint64_t *planes, Limit limit, const BitRows &bits) {
  const Words d;
  for (std::int32_t y = 0; y < bits.count; ++y) {
    std::uint64_t *row = bits.row(y);
    for (std::size_t i = 0; i < bits.words; i += hn::Lanes(d)) {
      hn::Store(StepHolds(d, limit, planes + i, bits.words, hn::Load(d, row + i)), d, row + i);
    }
    planes += bits.words * static_cast<unsigned>(counter_planes(limit));
  }
}

// The limits that the vectorizer uses have code of their own; any other limit works as well.
void CountRuns(std::uint64_t *planes, std::int32_t limit, const BitRows &bits) {
  if (limit == 100) return RunRows(planes, std::integral_constant<std::int32_t, 100>(), bits);
  RunRows(planes, limit, bits);
}

void CountHolds(std::uint64_t *planes, std::int32_t limit, const BitRows &bits) {
  if (limit == 500) return HoldRows(planes, std::integral_constant<std::int32_t, 500>(), bits);
  HoldRows(planes, limit, bits);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::vectorizer
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::vectorizer {

HWY_EXPORT(CountRuns);
void count_runs(std::uint64_t *planes, std::int32_t limit, const BitRows &bits) {
  HWY_DYNAMIC_DISPATCH(CountRuns)(planes, limit, bits);
}

HWY_EXPORT(CountHolds);
void count_holds(std::uint64_t *planes, std::int32_t limit, const BitRows &bits) {
  HWY_DYNAMIC_DISPATCH(CountHolds)(planes, limit, bits);
}

}  // namespace nox::vectorizer
#endif  // HWY_ONCE
