#include "vectorizer/edge_kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "vectorizer/edge_kernels.cc"
#include <hwy/foreach_target.h>
// After foreach_target.h, which sets the target.
#include <hwy/highway.h>

#include "video/pair_ops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace nox::vectorizer {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
namespace ops = video::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteVec = hn::Vec<Bytes>;
using SignedVec = hn::Vec<hn::RebindToSigned<Bytes>>;
using Shorts = hn::Repartition<std::int16_t, Bytes>;
using ShortVec = hn::Vec<Shorts>;
using Words = hn::CappedTag<std::uint64_t, kBlockWords>;
using WordVec = hn::Vec<Words>;

// The gradients are taken from sums of 2 by 2 samples. With p the difference of the sums above left
// and below right of a pixel, and q that of the sums above right and below left, the two Sobel sums
// are p
// - q and p + q, so that s_x^2 + s_y^2 = 2 (p^2 + q^2): an edge has p^2 + q^2 >= 333.
//
// The least larger one of |p| and |q| that makes an edge, by the smaller one: from 13 on any does.
alignas(16) constexpr std::uint8_t kLeastLarger[16] = {19, 19, 19, 18, 18, 18, 18, 17,
                                                       17, 16, 16, 15, 14, 0,  0,  0};

// The entry of the table, or 0 from 16 on.
HWY_INLINE ByteVec LookupLeastLarger(Bytes d, ByteVec smaller) {
  // 0 to 15 go to 112 to 127, anything above gets the top bit, which makes the answer 0.
  ByteVec index = hn::SaturatedAdd(smaller, hn::Set(d, 112));
#if !NOX_HAVE_SSSE3
  // Only SSSE3 looks at nothing but the low four bits and the top one.
  index = hn::And(index, hn::Set(d, 0x8F));
#endif
  return hn::TableLookupBytesOr0(hn::LoadDup128(d, kLeastLarger), index);
}

// Sums of neighbouring samples, in one row or over two. Of a pixel with an even place in the vector
// `first` is the sum with the sample before it and `second` that with the one behind; of one with
// an odd place these are `second` and `third`.
struct Sums {
  ShortVec first, second, third;
};

HWY_INLINE Sums AddColumns(Bytes d, const std::uint8_t *HWY_RESTRICT row) {
  return {ops::add_byte_pairs(hn::LoadU(d, row)), ops::add_byte_pairs(hn::LoadU(d, row + 1)),
          ops::add_byte_pairs(hn::LoadU(d, row + 2))};
}

HWY_INLINE Sums AddRows(const Sums &a, const Sums &b) {
  return {hn::Add(a.first, b.first), hn::Add(a.second, b.second), hn::Add(a.third, b.third)};
}

// Absolute values in the order of the pixels. 128 stands for all above as well.
HWY_INLINE ByteVec AbsInOrder(Bytes d, ShortVec even, ShortVec odd) {
  alignas(16) static constexpr std::uint8_t kInterleave[16] = {0, 8,  1, 9,  2, 10, 3, 11,
                                                               4, 12, 5, 13, 6, 14, 7, 15};
  const SignedVec packed = ops::clamp_blocks(even, odd);
  return hn::TableLookupBytes(hn::BitCast(d, hn::Abs(packed)), hn::LoadDup128(d, kInterleave));
}

// `upper` is the sums over the pixels' row and the one above, `lower` over theirs and the one
// below.
HWY_INLINE hn::Mask<Bytes> Edges(Bytes d, const Sums &upper, const Sums &lower) {
  const ByteVec p =
      AbsInOrder(d, hn::Sub(upper.first, lower.second), hn::Sub(upper.second, lower.third));
  const ByteVec q =
      AbsInOrder(d, hn::Sub(upper.second, lower.first), hn::Sub(upper.third, lower.second));
  const ByteVec least = LookupLeastLarger(d, hn::Min(p, q));
  return hn::Eq(hn::SaturatedSub(least, hn::Max(p, q)), hn::Zero(d));
}

// The edges at columns x + 1 on of `rows` rows, the first of them below `above`, which is at column
// x. Goes down, so that each row is loaded and summed once. `bits` is `pitch` bytes from row to
// row.
HWY_INLINE void FindEdgesInStrip(Bytes d, const std::uint8_t *above, std::ptrdiff_t stride,
                                 std::int32_t rows, hn::Mask<Bytes> valid, std::uint8_t *bits,
                                 std::size_t pitch) {
  Sums row = AddColumns(d, above + stride);
  Sums upper = AddRows(AddColumns(d, above), row);
  above += 2 * stride;
  for (std::int32_t r = 0; r < rows; ++r, above += stride, bits += pitch) {
    const Sums next = AddColumns(d, above);
    const Sums lower = AddRows(row, next);
    hn::StoreMaskBits(d, hn::And(valid, Edges(d, upper, lower)), bits);
    row = next;
    upper = lower;
  }
}

// The strip of the last columns, where whole vectors would reach behind the plane: row by row
// through copies.
HWY_INLINE void FindEdgesInCopies(Bytes d, const std::uint8_t *above, std::ptrdiff_t stride,
                                  std::int32_t rows, std::size_t columns, std::uint8_t *bits,
                                  std::size_t pitch) {
  constexpr std::size_t kCopyStride = hn::MaxLanes(Bytes()) + 2;
  std::uint8_t copies[3 * kCopyStride] = {};
  for (std::int32_t r = 0; r < rows; ++r, above += stride, bits += pitch) {
    for (int i = 0; i < 3; ++i) {
      std::memcpy(copies + static_cast<std::size_t>(i) * kCopyStride, above + i * stride,
                  columns + 2);
    }
    FindEdgesInStrip(d, copies, kCopyStride, 1, hn::FirstN(d, columns), bits, pitch);
  }
}

// Of `rows` rows of edges, how many have a row below them of which `reach` bytes may be read.
std::int32_t WholeRows(std::ptrdiff_t stride, std::ptrdiff_t readable, std::size_t reach,
                       std::int32_t rows) {
  const std::ptrdiff_t slack = readable - static_cast<std::ptrdiff_t>(reach) - 2 * stride;
  if (stride <= 0 || slack < 0) return 0;
  return static_cast<std::int32_t>(std::min<std::ptrdiff_t>(slack / stride + 1, rows));
}

void FindEdges(const std::uint8_t *above, std::ptrdiff_t stride, std::int32_t width,
               std::ptrdiff_t readable, const BitRows &edges) {
  const Bytes d;
  const std::size_t step = hn::Lanes(d);
  const auto columns = static_cast<std::size_t>(width - 3);
  const std::size_t pitch = edges.pitch * sizeof(std::uint64_t);
  auto *bits = reinterpret_cast<std::uint8_t *>(edges.data);
  const hn::Mask<Bytes> all = hn::FirstN(d, step);
  std::size_t x = 0;
  for (; x + step <= columns; x += step) {
    FindEdgesInStrip(d, above + x, stride, edges.count, all, bits + x / 8, pitch);
  }
  if (x == columns) return;
  const std::int32_t in_place = WholeRows(stride, readable, x + step + 2, edges.count);
  const hn::Mask<Bytes> valid = hn::FirstN(d, columns - x);
  above += x;
  bits += x / 8;
  if (in_place > 0) FindEdgesInStrip(d, above, stride, in_place, valid, bits, pitch);
  FindEdgesInCopies(d, above + in_place * stride, stride, edges.count - in_place, columns - x,
                    bits + static_cast<std::size_t>(in_place) * pitch, pitch);
}

// Each bit's neighbour in the column before or behind, across words.
HWY_INLINE WordVec FromBefore(Words d, const std::uint64_t *row, WordVec v) {
  return hn::Or(hn::ShiftLeft<1>(v), hn::ShiftRight<63>(hn::LoadU(d, row - 1)));
}
HWY_INLINE WordVec FromBehind(Words d, const std::uint64_t *row, WordVec v) {
  return hn::Or(hn::ShiftRight<1>(v), hn::ShiftLeft<63>(hn::LoadU(d, row + 1)));
}

// Moves the columns to their own bits on the way: bit k of `row` is column k + 1.
HWY_INLINE WordVec Dilate(Words d, const std::uint64_t *row, std::size_t pitch) {
  const WordVec middle = hn::Load(d, row);
  const WordVec before = hn::ShiftRight<62>(hn::LoadU(d, row - 1));  // the two bits before
  const WordVec sides = hn::Or(middle, hn::Or(hn::ShiftLeft<2>(middle), before));
  const WordVec column = hn::Or(middle, hn::Or(hn::Load(d, row - pitch), hn::Load(d, row + pitch)));
  const WordVec column_before = hn::Or(
      hn::LoadU(d, row - 1), hn::Or(hn::LoadU(d, row - pitch - 1), hn::LoadU(d, row + pitch - 1)));
  return hn::Or(sides, hn::Or(hn::ShiftLeft<1>(column), hn::ShiftRight<63>(column_before)));
}

HWY_INLINE WordVec Erode(Words d, const std::uint64_t *row, std::size_t pitch) {
  const WordVec middle = hn::Load(d, row);
  const WordVec sides = hn::And(FromBefore(d, row, middle), FromBehind(d, row, middle));
  const WordVec column = hn::And(hn::Load(d, row - pitch), hn::Load(d, row + pitch));
  return hn::And(middle, hn::And(sides, column));
}

void CloseEdges(const BitRows &edges, const BitRows &dilated, const BitRows &closed) {
  const Words d;
  for (std::int32_t r = 0; r < closed.count + 2; ++r) {
    const std::uint64_t *from = edges.row(r + 1);
    std::uint64_t *to = dilated.row(r);
    for (std::size_t i = 0; i < closed.words; i += hn::Lanes(d)) {
      hn::Store(Dilate(d, from + i, edges.pitch), d, to + i);
    }
  }
  for (std::int32_t r = 0; r < closed.count; ++r) {
    const std::uint64_t *from = dilated.row(r + 1);
    std::uint64_t *to = closed.row(r);
    for (std::size_t i = 0; i < closed.words; i += hn::Lanes(d)) {
      hn::Store(Erode(d, from + i, dilated.pitch), d, to + i);
    }
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::vectorizer
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::vectorizer {

HWY_EXPORT(FindEdges);
void find_edges(const std::uint8_t *above, std::ptrdiff_t stride, std::int32_t width,
                std::ptrdiff_t readable, const BitRows &edges) {
  HWY_DYNAMIC_DISPATCH(FindEdges)(above, stride, width, readable, edges);
}

HWY_EXPORT(CloseEdges);
void close_edges(const BitRows &edges, const BitRows &dilated, const BitRows &closed) {
  HWY_DYNAMIC_DISPATCH(CloseEdges)(edges, dilated, closed);
}

}  // namespace nox::vectorizer
#endif  // HWY_ONCE
