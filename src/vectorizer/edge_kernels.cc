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

HWY_BEFORE_NAMESPACE();
namespace nox::vectorizer {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteVec = hn::Vec<Bytes>;
using Words = hn::CappedTag<std::uint64_t, kBlockWords>;
using WordVec = hn::Vec<Words>;

// The least |s_y| that makes an edge of |s_x| = 0, 1, 2, ...; from 26 on s_x alone does.
alignas(16) constexpr std::uint8_t kLeastOther0To15[16] = {26, 26, 26, 26, 26, 26, 26, 25,
                                                           25, 25, 24, 24, 23, 23, 22, 21};
alignas(16) constexpr std::uint8_t kLeastOther16To31[16] = {21, 20, 19, 18, 17, 15, 14, 12,
                                                            10, 7,  0,  0,  0,  0,  0,  0};

// Entry `index` of a table of 16 where index + bias is below 128; 0 where it is above. The bias
// puts the table's own entries at 112 to 127.
template <int kBias>
HWY_INLINE ByteVec Lookup(Bytes d, ByteVec table, ByteVec index) {
  ByteVec biased = hn::SaturatedAdd(index, hn::Set(d, kBias));
#if !HWY_ARCH_X86 || HWY_TARGET == HWY_EMU128
  // Only x86 looks at nothing but the low four bits and the top one.
  biased = hn::And(biased, hn::Set(d, 0x8F));
#endif
  return hn::TableLookupBytesOr0(table, biased);
}

// A quarter of a + 2 m + b, rounded up.
HWY_INLINE ByteVec Quarter(ByteVec a, ByteVec m, ByteVec b) {
  return hn::AverageRound(hn::AverageRound(a, b), m);
}

HWY_INLINE ByteVec AbsDifference(ByteVec a, ByteVec b) {
  return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
}

// |s| where it is below 128, and at least 32 elsewhere, which decides as well: any |s| from 26 on
// is an edge. `low` is s modulo 256; a and b are Quarter() of the two sides, whose difference is s
// / 4 within 3/4: above |s| nowhere, and from 32 on where |s| does not fit a byte's range.
HWY_INLINE ByteVec Strength(Bytes d, ByteVec low, ByteVec a, ByteVec b) {
  const hn::RebindToSigned<Bytes> di;
  const ByteVec exact = hn::BitCast(d, hn::Abs(hn::BitCast(di, low)));
  return hn::Max(exact, AbsDifference(a, b));
}

// The edges at the columns x + 1 for the three rows from column x on.
HWY_INLINE hn::Mask<Bytes> Edges(Bytes d, const std::uint8_t *HWY_RESTRICT above,
                                 const std::uint8_t *HWY_RESTRICT row,
                                 const std::uint8_t *HWY_RESTRICT below) {
  const ByteVec nw = hn::LoadU(d, above), n = hn::LoadU(d, above + 1), ne = hn::LoadU(d, above + 2);
  const ByteVec w = hn::LoadU(d, row), e = hn::LoadU(d, row + 2);
  const ByteVec sw = hn::LoadU(d, below), s = hn::LoadU(d, below + 1), se = hn::LoadU(d, below + 2);

  // The sums modulo 256: both consist of the two diagonals and twice the middle.
  const ByteVec falling = hn::Sub(nw, se), rising = hn::Sub(ne, sw);
  const ByteVec across = hn::Sub(w, e), down = hn::Sub(n, s);
  const ByteVec low_x = hn::Add(hn::Add(hn::Sub(falling, rising), across), across);
  const ByteVec low_y = hn::Add(hn::Add(hn::Add(falling, rising), down), down);

  const ByteVec strength_x = Strength(d, low_x, Quarter(nw, w, sw), Quarter(ne, e, se));
  const ByteVec strength_y = Strength(d, low_y, Quarter(nw, n, ne), Quarter(sw, s, se));

  // The table decreases, so where both lookups answer (below 16) the first one is the larger.
  const ByteVec least_y = hn::Max(Lookup<112>(d, hn::LoadDup128(d, kLeastOther0To15), strength_x),
                                  Lookup<96>(d, hn::LoadDup128(d, kLeastOther16To31), strength_x));
  return hn::Eq(hn::SaturatedSub(least_y, strength_y), hn::Zero(d));
}

// The last columns of a row, from `x` on, through copies where `readable` bytes from column x of
// the row below do not hold a whole step.
HWY_INLINE hn::Mask<Bytes> TailEdges(Bytes d, const std::uint8_t *rows[3], std::size_t columns,
                                     std::ptrdiff_t readable) {
  const hn::Mask<Bytes> valid = hn::FirstN(d, columns);
  if (readable >= static_cast<std::ptrdiff_t>(hn::Lanes(d) + 2)) {
    return hn::And(valid, Edges(d, rows[0], rows[1], rows[2]));
  }
  std::uint8_t copies[3][hn::MaxLanes(Bytes()) + 2] = {};
  for (int i = 0; i < 3; ++i) std::memcpy(copies[i], rows[i], columns + 2);
  return hn::And(valid, Edges(d, copies[0], copies[1], copies[2]));
}

void FindEdges(const std::uint8_t *above, std::ptrdiff_t stride, std::int32_t width,
               std::ptrdiff_t readable, const BitRows &edges) {
  const Bytes d;
  const std::size_t step = hn::Lanes(d);
  const auto columns = static_cast<std::size_t>(width - 3);
  for (std::int32_t r = 0; r < edges.count; ++r, above += stride, readable -= stride) {
    const std::uint8_t *rows[3] = {above, above + stride, above + 2 * stride};
    auto *bits = reinterpret_cast<std::uint8_t *>(edges.row(r));
    std::size_t x = 0;
    for (; x + step <= columns; x += step) {
      hn::StoreMaskBits(d, Edges(d, rows[0] + x, rows[1] + x, rows[2] + x), bits + x / 8);
    }
    std::size_t written = x / 8;
    if (x < columns) {
      for (const std::uint8_t *&row : rows) row += x;
      const std::ptrdiff_t left = readable - 2 * stride - static_cast<std::ptrdiff_t>(x);
      written += hn::StoreMaskBits(d, TailEdges(d, rows, columns - x, left), bits + written);
    }
    std::memset(bits + written, 0, edges.words * sizeof(std::uint64_t) - written);
  }
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
