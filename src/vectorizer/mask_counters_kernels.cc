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
HWY_INLINE WordVec Step(Words d, Limit limit, std::uint64_t *plane, std::size_t words,
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

// Whether a block of kBlockWords words is the same in both places.
HWY_INLINE bool SameBlock(Words d, const std::uint64_t *a, const std::uint64_t *b, WordVec flip) {
  WordVec differ = hn::Zero(d);
  for (std::size_t i = 0; i < kBlockWords; i += hn::Lanes(d)) {
    differ = hn::Or(differ, hn::Xor(hn::Xor(hn::Load(d, a + i), flip), hn::Load(d, b + i)));
  }
  return hn::AllTrue(d, hn::Eq(differ, hn::Zero(d)));
}

// Steps a block and tells whether it is settled: counters whose bit is not set are 0, so it is when
// those whose bit is set are at the limit.
template <class Limit>
HWY_INLINE bool StepBlock(Words d, Limit limit, std::uint64_t *plane, std::size_t words,
                          std::uint64_t *bits, WordVec flip) {
  WordVec differ = hn::Zero(d);
  for (std::size_t i = 0; i < kBlockWords; i += hn::Lanes(d)) {
    const WordVec set = hn::Xor(hn::Load(d, bits + i), flip);
    const WordVec answer = Step(d, limit, plane + i, words, set);
    differ = hn::Or(differ, hn::Xor(set, answer));
    hn::Store(hn::Xor(answer, flip), d, bits + i);
  }
  return hn::AllTrue(d, hn::Eq(differ, hn::Zero(d)));
}

template <class Limit>
void StepRows(std::uint64_t *planes, std::uint8_t *settled, Limit limit, bool inverted,
              const BitRows &bits) {
  const Words d;
  const WordVec flip = hn::Set(d, inverted ? ~std::uint64_t{0} : 0);
  // In a settled block the highest plane is the counters at the limit, which are those set last.
  const std::size_t top = bits.words * static_cast<unsigned>(counter_planes(limit) - 1);
  for (std::int32_t y = 0; y < bits.count; ++y, planes += top + bits.words) {
    std::uint64_t *row = bits.row(y);
    for (std::size_t i = 0; i < bits.words; i += kBlockWords, ++settled) {
      if (*settled != 0 && SameBlock(d, row + i, planes + top + i, flip)) continue;
      *settled = StepBlock(d, limit, planes + i, bits.words, row + i, flip) ? 1 : 0;
    }
  }
}

// The limits that the vectorizer uses have code of their own; any other limit works as well.
void CountRuns(std::uint64_t *planes, std::uint8_t *settled, std::int32_t limit, bool inverted,
               const BitRows &bits) {
  switch (limit) {
    case 100:
      return StepRows(planes, settled, std::integral_constant<std::int32_t, 100>(), inverted, bits);
    case 500:
      return StepRows(planes, settled, std::integral_constant<std::int32_t, 500>(), inverted, bits);
    default:
      return StepRows(planes, settled, limit, inverted, bits);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::vectorizer
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::vectorizer {

HWY_EXPORT(CountRuns);
void count_runs(std::uint64_t *planes, std::uint8_t *settled, std::int32_t limit, bool inverted,
                const BitRows &bits) {
  HWY_DYNAMIC_DISPATCH(CountRuns)(planes, settled, limit, inverted, bits);
}

}  // namespace nox::vectorizer
#endif  // HWY_ONCE
