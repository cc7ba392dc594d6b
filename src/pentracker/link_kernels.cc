#include "pentracker/link_kernels.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pentracker/link_kernels.cc"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace nox::pentracker::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr int kLanes = 16;  // at most
using Floats = hn::CappedTag<float, kLanes>;
using FloatVector = hn::Vec<Floats>;

// All looks decide by a bound on the score that is cheap and a little too high. It is made of
// products where scores have quotients; all roundings of either together stay far below this.
constexpr float kSlack = 1.00001F;
// A little less than what a pixel of distance takes from the position factor: the approximate root
// is within one part in 128 of the true one on every machine.
constexpr float kFading = kLossPerPixel * (1.0F - 1.0F / 64.0F);
// Keeps the root of 0 finite.
constexpr float kTinySquare = 1e-12F;

HWY_INLINE FloatVector likeness(const float *sizes, const float *inverses, FloatVector size,
                                FloatVector inverse) {
  const Floats d;
  return hn::Min(hn::Mul(hn::LoadU(d, sizes), inverse), hn::Mul(hn::LoadU(d, inverses), size));
}

// Never below the product of the size factors.
HWY_INLINE FloatVector likeness(const LinkColumns &columns, std::size_t i, const BlobShape &shape) {
  const Floats d;
  const FloatVector count = likeness(&columns.count[i], &columns.inverse_count[i],
                                     hn::Set(d, shape.count), hn::Set(d, shape.inverse_count));
  const FloatVector width = likeness(&columns.width[i], &columns.inverse_width[i],
                                     hn::Set(d, shape.width), hn::Set(d, shape.inverse_width));
  const FloatVector height = likeness(&columns.height[i], &columns.inverse_height[i],
                                      hn::Set(d, shape.height), hn::Set(d, shape.inverse_height));
  return hn::Mul(hn::Mul(count, width), hn::Mul(height, hn::Set(d, kSlack)));
}

// Never below the position factor where that is above the one of distant blobs.
HWY_INLINE FloatVector nearness(const LinkColumns &columns, std::size_t i, const LinkQuery &query) {
  const Floats d;
  const FloatVector dx = hn::Sub(hn::LoadU(d, &columns.x[i]), hn::Set(d, query.x));
  const FloatVector dy = hn::Sub(hn::LoadU(d, &columns.y[i]), hn::Set(d, query.y));
  const FloatVector squared = hn::MulAdd(dx, dx, hn::MulAdd(dy, dy, hn::Set(d, kTinySquare)));
  const FloatVector distance = hn::Mul(squared, hn::ApproximateReciprocalSqrt(squared));
  return hn::NegMulAdd(distance, hn::Set(d, kFading), hn::Set(d, 1.0F));
}

HWY_INLINE std::uint32_t lanes_of(hn::Mask<Floats> mask) {
  std::uint8_t bytes[8] = {};
  hn::StoreMaskBits(Floats(), mask, bytes);
  std::uint32_t lanes;
  std::memcpy(&lanes, bytes, sizeof(lanes));
  return lanes;
}

std::int32_t LikelyNear(const LinkColumns &columns, const LinkQuery &query, float above,
                        LinkRows rows, LinkCandidate *out) {
  const Floats d;
  LinkCandidate *next = out;
  for (std::int32_t row = rows.begin; row < rows.end;
       row += static_cast<std::int32_t>(hn::Lanes(d))) {
    const auto i = static_cast<std::size_t>(row);
    const FloatVector near = nearness(columns, i, query);
    const FloatVector bound = hn::Mul(near, likeness(columns, i, query.shape));
    const FloatVector passed = hn::Max(hn::LoadU(d, &columns.taken[i]), hn::Set(d, above));
    const auto likely = hn::And(hn::Gt(near, hn::Set(d, kFarPosition)), hn::Gt(bound, passed));
    if (hn::AllFalse(d, likely)) continue;
    HWY_ALIGN float bounds[kLanes];
    hn::Store(bound, d, bounds);
    for (std::uint32_t left = lanes_of(likely); left != 0; left &= left - 1) {
      const int lane = std::countr_zero(left);
      if (row + lane >= rows.end) break;
      *next++ = {row + lane, bounds[lane]};
    }
  }
  return static_cast<std::int32_t>(next - out);
}

// The factors of shape_score in its very forms: the quotient, or the product with the new blob's
// inverse where the earlier blob is the smaller one.
HWY_INLINE FloatVector exact_scores(const LinkColumns &columns, std::size_t i,
                                    const BlobShape &shape, FloatVector position) {
  const Floats d;
  const auto factor = [d](const float *sizes, float size, float inverse,
                          auto is_quotient) HWY_ATTR {
    const FloatVector earlier = hn::LoadU(d, sizes);
    const FloatVector blob = hn::Set(d, size);
    return hn::IfThenElse(is_quotient(blob, earlier), hn::Div(blob, earlier),
                          hn::Mul(earlier, hn::Set(d, inverse)));
  };
  const auto is_less = [](FloatVector blob, FloatVector earlier)
                           HWY_ATTR { return hn::Lt(blob, earlier); };
  const auto is_not_more = [](FloatVector blob, FloatVector earlier)
                               HWY_ATTR { return hn::Le(blob, earlier); };
  const FloatVector count = factor(&columns.count[i], shape.count, shape.inverse_count, is_less);
  const FloatVector width =
      factor(&columns.width[i], shape.width, shape.inverse_width, is_not_more);
  const FloatVector height =
      factor(&columns.height[i], shape.height, shape.inverse_height, is_not_more);
  return hn::Mul(hn::Mul(hn::Mul(position, count), width), height);
}

// position_factor, which is the same in single precision.
HWY_INLINE FloatVector exact_positions(const LinkColumns &columns, std::size_t i,
                                       const LinkQuery &query) {
  const Floats d;
  const FloatVector dx = hn::Sub(hn::LoadU(d, &columns.x[i]), hn::Set(d, query.x));
  const FloatVector dy = hn::Sub(hn::LoadU(d, &columns.y[i]), hn::Set(d, query.y));
  const FloatVector distance = hn::Sqrt(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)));
  const FloatVector loss =
      hn::Mul(hn::Add(distance, hn::Set(d, kTinyLength)), hn::Set(d, kLossPerPixel));
  return hn::Max(hn::Sub(hn::Set(d, 1.0F), loss), hn::LoadU(d, &columns.least[i]));
}

// Takes of the lanes that are set those that score above all before them.
HWY_INLINE void take_rising(hn::Mask<Floats> higher, FloatVector scores, LinkWalk *walk) {
  HWY_ALIGN float score[kLanes];
  hn::Store(scores, Floats(), score);
  for (std::uint32_t left = lanes_of(higher); left != 0; left &= left - 1) {
    const int lane = std::countr_zero(left);
    if (score[lane] <= walk->best) continue;
    *walk->next++ = {walk->row + lane, score[lane]};
    walk->best = score[lane];
  }
}

HWY_INLINE hn::Mask<Floats> rows_below(std::int32_t row, std::int32_t limit) {
  const hn::RebindToSigned<Floats> rows;
  return hn::RebindMask(Floats(), hn::Lt(hn::Iota(rows, row), hn::Set(rows, limit)));
}

void WalkAll(const LinkColumns &columns, const LinkQuery &query, std::int32_t limit, float enough,
             LinkWalk *result) {
  const Floats d;
  LinkWalk walk = *result;
  for (; walk.row < limit && walk.best < enough;
       walk.row += static_cast<std::int32_t>(hn::Lanes(d))) {
    const auto i = static_cast<std::size_t>(walk.row);
    const auto inside = rows_below(walk.row, limit);
    const FloatVector position =
        hn::Max(nearness(columns, i, query), hn::LoadU(d, &columns.least[i]));
    const FloatVector bound = hn::Mul(position, likeness(columns, i, query.shape));
    const FloatVector passed = hn::Max(hn::LoadU(d, &columns.taken[i]), hn::Set(d, walk.best));
    if (hn::AllFalse(d, hn::And(inside, hn::Gt(bound, passed)))) continue;
    const FloatVector scores =
        exact_scores(columns, i, query.shape, exact_positions(columns, i, query));
    take_rising(hn::And(inside, hn::Gt(scores, passed)), scores, &walk);
  }
  walk.row = std::min(walk.row, limit);
  *result = walk;
}

void WalkDistant(const LinkColumns &columns, const DistantRows &distant, const BlobShape &shape,
                 std::int32_t limit, float enough, LinkWalk *result) {
  const Floats d;
  LinkWalk walk = *result;
  for (; walk.best < enough; walk.row += static_cast<std::int32_t>(hn::Lanes(d))) {
    walk.row = distant.open.next(walk.row);
    if (walk.row >= limit) break;
    const auto i = static_cast<std::size_t>(walk.row);
    const FloatVector least = hn::LoadU(d, &columns.least[i]);
    const FloatVector bound = hn::Mul(least, likeness(columns, i, shape));
    const FloatVector passed = hn::Max(hn::LoadU(d, &distant.taken[i]), hn::Set(d, walk.best));
    if (hn::AllFalse(d, hn::Gt(bound, passed))) continue;
    const FloatVector scores = exact_scores(columns, i, shape, least);
    take_rising(hn::And(rows_below(walk.row, limit), hn::Gt(scores, passed)), scores, &walk);
  }
  walk.row = std::min(walk.row, limit);
  *result = walk;
}

}  // namespace
}  // namespace nox::pentracker::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::pentracker {

HWY_EXPORT(LikelyNear);
HWY_EXPORT(WalkAll);
HWY_EXPORT(WalkDistant);

std::int32_t likely_near(const LinkColumns &columns, const LinkQuery &query, float above,
                         LinkRows rows, LinkCandidate *out) {
  return HWY_DYNAMIC_DISPATCH(LikelyNear)(columns, query, above, rows, out);
}

void walk_all(const LinkColumns &columns, const LinkQuery &query, std::int32_t limit, float enough,
              LinkWalk *walk) {
  HWY_DYNAMIC_DISPATCH(WalkAll)(columns, query, limit, enough, walk);
}

void walk_distant(const LinkColumns &columns, const DistantRows &distant, const BlobShape &shape,
                  std::int32_t limit, float enough, LinkWalk *walk) {
  HWY_DYNAMIC_DISPATCH(WalkDistant)(columns, distant, shape, limit, enough, walk);
}

}  // namespace nox::pentracker
#endif  // HWY_ONCE
