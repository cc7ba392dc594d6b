#include "pentracker/link_table_kernels.h"

#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pentracker/link_table_kernels.cc"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace nox::pentracker::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The bound is made of products where the score has quotients; all roundings of either together
// stay far below this.
constexpr float kSlack = 1.00001F;
constexpr float kTinySquare = 1e-12F;

template <class D, class V = hn::Vec<D>>
HWY_INLINE V likeness(D d, const float *sizes, const float *inverses, float size, float inverse) {
  return hn::Min(hn::Mul(hn::LoadU(d, sizes), hn::Set(d, inverse)),
                 hn::Mul(hn::LoadU(d, inverses), hn::Set(d, size)));
}

// Never below the position factor. The approximate root is within one part in 128 of the true one
// on every machine, and `fading` allows for that; the summand keeps the root of 0 finite.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V nearness(D d, const LinkTable &table, std::size_t i, const LinkQuery &query) {
  const V dx = hn::Sub(hn::LoadU(d, &table.x[i]), hn::Set(d, query.x));
  const V dy = hn::Sub(hn::LoadU(d, &table.y[i]), hn::Set(d, query.y));
  const V squared = hn::MulAdd(dx, dx, hn::MulAdd(dy, dy, hn::Set(d, kTinySquare)));
  const V distance = hn::Mul(squared, hn::ApproximateReciprocalSqrt(squared));
  const V fallen = hn::NegMulAdd(distance, hn::LoadU(d, &table.fading[i]), hn::Set(d, 1.0F));
  return hn::Max(fallen, hn::Set(d, kFarPosition));
}

std::int32_t FirstLikely(const LinkTable &table, const LinkQuery &query, std::int32_t from) {
  const hn::ScalableTag<float> d;
  const auto lanes = static_cast<std::int32_t>(hn::Lanes(d));
  const BlobShape &shape = query.shape;
  const auto best = hn::Set(d, query.best);
  for (std::int32_t row = from; row < table.count; row += lanes) {
    const auto i = static_cast<std::size_t>(row);
    auto bound =
        likeness(d, &table.pixels[i], &table.inverse_pixels[i], shape.count, shape.inverse_count);
    bound = hn::Mul(bound, likeness(d, &table.width[i], &table.inverse_width[i], shape.width,
                                    shape.inverse_width));
    bound = hn::Mul(bound, likeness(d, &table.height[i], &table.inverse_height[i], shape.height,
                                    shape.inverse_height));
    bound = hn::Mul(hn::Mul(bound, hn::Set(d, kSlack)), nearness(d, table, i, query));
    const auto to_surpass = hn::Max(best, hn::LoadU(d, &table.taken[i]));
    const std::intptr_t lane = hn::FindFirstTrue(d, hn::Gt(bound, to_surpass));
    if (lane >= 0) return row + static_cast<std::int32_t>(lane);
  }
  return table.count;
}

}  // namespace
}  // namespace nox::pentracker::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::pentracker {

HWY_EXPORT(FirstLikely);

std::int32_t first_likely(const LinkTable &table, const LinkQuery &query, std::int32_t from) {
  return HWY_DYNAMIC_DISPATCH(FirstLikely)(table, query, from);
}

}  // namespace nox::pentracker
#endif  // HWY_ONCE
