// Every row of these shapes is one run of columns, and the runs are nested. So a source row is
// joined with itself shifted by 1, 2 and 4 bits, which gives runs of up to 8 at every place, and
// two shifted copies of such a run give each longer one. Rows with the same run share it. Down the
// mask one partial result per row of the shape moves along: each source row is loaded once, joins
// all the output rows that it lies under, and finishes one of them.
#include "masks/morphology_shapes.h"

#include <algorithm>
#include <bit>

#define HWY_WANT_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "masks/morphology_shapes.cc"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"
#include "masks/morphology_span-inl.h"

HWY_BEFORE_NAMESPACE();
namespace nox::masks::HWY_NAMESPACE {
namespace {

constexpr int kLevels = 4;  // runs of 1, 2, 4 and 8

// Runs of up to this many columns are joined bit by bit.
constexpr int kShortRun = 3;

constexpr int run_level(std::uint32_t row) {
  const int length = std::popcount(row);
  if (length <= kShortRun) return 0;
  return static_cast<int>(std::bit_width(static_cast<unsigned>(length))) - 1;
}

template <const auto &kShape>
constexpr int highest_level() {
  int highest = 0;
  for (const std::uint32_t row : kShape.rows) highest = std::max(highest, run_level(row));
  return highest;
}

// The topmost row with the same run as row r.
template <const auto &kShape>
constexpr std::size_t first_row_like(std::size_t r) {
  std::size_t first = 0;
  while (kShape.rows[first] != kShape.rows[r]) ++first;
  return first;
}

template <class Op, const auto &kShape, class V>
class ShapeSweep {
 public:
  static constexpr std::size_t kHeight = kShape.rows.size();

  explicit HWY_INLINE ShapeSweep(V zero) { Clear<0>(zero); }

  // Takes the next source row and returns the output row that it finishes.
  HWY_INLINE V Next(const Words<V> &source) {
    levels_[0] = source;
    Double<0>();
    JoinRuns<0>();
    const V finished = Op::Join(partial_[kHeight - 2], runs_[kHeight - 1]);
    MoveDown<kHeight - 2>();
    return finished;
  }

 private:
  // A row is loaded from one lane in front of its span; the anchor lies within that lane.
  static constexpr int kLaneBits = kShape.width <= 8 ? 8 : 16;
  static constexpr int kLead = kLaneBits - kShape.width / 2;

  template <std::size_t r>
  HWY_INLINE void Clear(V zero) {
    if constexpr (r + 1 < kHeight) {
      partial_[r] = zero;
      Clear<r + 1>(zero);
    }
  }

  template <int level>
  HWY_INLINE void Double() {
    if constexpr (level < highest_level<kShape>()) {
      levels_[level + 1] = join_shifted<Op, 1 << level>(levels_[level]);
      Double<level + 1>();
    }
  }

  template <std::size_t r>
  HWY_INLINE void JoinRuns() {
    if constexpr (r < kHeight) {
      constexpr std::size_t kFirst = first_row_like<kShape>(r);
      if constexpr (kFirst < r) {
        runs_[r] = runs_[kFirst];
      } else {
        runs_[r] = Run<kShape.rows[r]>();
      }
      JoinRuns<r + 1>();
    }
  }

  template <std::uint32_t row>
  HWY_INLINE V Run() const {
    constexpr int kFirst = kLead + std::countr_zero(row);
    constexpr int kLength = std::popcount(row);
    constexpr int kLevel = run_level(row);
    if constexpr (kLevel > 0) {
      constexpr int kLast = kFirst + kLength - (1 << kLevel);
      return Op::Join(bits_from<kFirst>(levels_[kLevel]), bits_from<kLast>(levels_[kLevel]));
    } else {
      return ShortRun<kFirst, kLength>();
    }
  }

  template <int first, int length>
  HWY_INLINE V ShortRun() const {
    if constexpr (length == 1) {
      return bits_from<first>(levels_[0]);
    } else {
      return Op::Join(ShortRun<first, length - 1>(), bits_from<first + length - 1>(levels_[0]));
    }
  }

  template <std::size_t r>
  HWY_INLINE void MoveDown() {
    if constexpr (r == 0) {
      partial_[0] = runs_[0];
    } else {
      partial_[r] = Op::Join(partial_[r - 1], runs_[r]);
      MoveDown<r - 1>();
    }
  }

  Words<V> levels_[kLevels];
  V runs_[kHeight];
  V partial_[kHeight - 1];  // [r]: joined with shape rows 0 to r so far
};

// Rows first to end - 1 of the mask.
struct Band {
  std::ptrdiff_t first;
  std::ptrdiff_t end;
};

template <class Op, const auto &kShape>
class BandSweep {
 public:
  static constexpr auto kHeight = static_cast<std::ptrdiff_t>(kShape.rows.size());

  BandSweep(const MorphologyPass &pass, Band band) : pass_(pass), band_(band) {}

  template <template <class> class Span, class D>
  HWY_INLINE void operator()(const Span<D> &span, std::ptrdiff_t at) const {
    // Rows of the shape below its anchor: an output row is finished by the source row this much
    // further down.
    constexpr std::ptrdiff_t kLag = kHeight - 1 - kHeight / 2;
    using V = hn::Vec<D>;
    const V zero = hn::Zero(D());
    ShapeSweep<Op, kShape, V> sweep(zero);
    const std::ptrdiff_t above = std::max(band_.first - kHeight / 2, std::ptrdiff_t{0});
    const MorphologyPass pass = pass_;  // the compiler would reload it after every store
    const Band band = band_;
    const std::uint8_t *src = pass.src + above * pass.src_stride + at - pass.lane_bytes;
    std::uint8_t *dst = pass.dst + band.first * pass.dst_stride + at;
    for (std::ptrdiff_t y = above - kLag; y < band.end; ++y) {
      Words<V> source{zero, zero};
      if (y < pass.height - kLag) {
        source = span.Load(src);
        src += pass.src_stride;
      }
      const V finished = sweep.Next(source);
      if (y < band.first) continue;
      span.Store(finished, dst);
      dst += pass.dst_stride;
    }
  }

 private:
  const MorphologyPass &pass_;
  Band band_;
};

// Sweeps down one vector wide would bring each cache line of a large mask in twice, and from far.
// So a band of rows that stays in the first-level cache is finished in all its spans before the
// next, at the price of a few rows in front of it; tall shapes take taller bands, they compute
// longer than they wait.
template <class Op, const auto &kShape>
HWY_INLINE void sweep_shape(const MorphologyPass &pass) {
  constexpr std::ptrdiff_t kBandBytes = 24 << 10;
  constexpr std::ptrdiff_t kHeights = 16;
  using Sweep = BandSweep<Op, kShape>;
  const std::ptrdiff_t rows =
      std::max(kBandBytes / (pass.src_stride + pass.dst_stride), kHeights * Sweep::kHeight);
  for (std::ptrdiff_t first = 0; first < pass.height; first += rows) {
    const std::ptrdiff_t end = std::min<std::ptrdiff_t>(first + rows, pass.height);
    for_each_span_of_row(pass.bytes, Sweep(pass, {first, end}));
  }
}

void ErodeBox3(const MorphologyPass &pass) {
  sweep_shape<Erode, kBox3>(pass);
}

void DilateBox3(const MorphologyPass &pass) {
  sweep_shape<Dilate, kBox3>(pass);
}

void ErodeCross3(const MorphologyPass &pass) {
  sweep_shape<Erode, kCross3>(pass);
}

void DilateCross3(const MorphologyPass &pass) {
  sweep_shape<Dilate, kCross3>(pass);
}

void ErodeDisc15(const MorphologyPass &pass) {
  sweep_shape<Erode, kDisc15>(pass);
}

void DilateDisc15(const MorphologyPass &pass) {
  sweep_shape<Dilate, kDisc15>(pass);
}

}  // namespace
}  // namespace nox::masks::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::masks {

HWY_EXPORT(ErodeBox3);
HWY_EXPORT(DilateBox3);
HWY_EXPORT(ErodeCross3);
HWY_EXPORT(DilateCross3);
HWY_EXPORT(ErodeDisc15);
HWY_EXPORT(DilateDisc15);

void erode_box3(const MorphologyPass &pass) {
  HWY_DYNAMIC_DISPATCH(ErodeBox3)(pass);
}

void dilate_box3(const MorphologyPass &pass) {
  HWY_DYNAMIC_DISPATCH(DilateBox3)(pass);
}

void erode_cross3(const MorphologyPass &pass) {
  HWY_DYNAMIC_DISPATCH(ErodeCross3)(pass);
}

void dilate_cross3(const MorphologyPass &pass) {
  HWY_DYNAMIC_DISPATCH(DilateCross3)(pass);
}

void erode_disc15(const MorphologyPass &pass) {
  HWY_DYNAMIC_DISPATCH(ErodeDisc15)(pass);
}

void dilate_disc15(const MorphologyPass &pass) {
  HWY_DYNAMIC_DISPATCH(DilateDisc15)(pass);
}

}  // namespace nox::masks
#endif  // HWY_ONCE
