#include "vectorizer/frame_sweep.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "vectorizer/drawing_kernels.h"
#include "vectorizer/edge_kernels.h"
#include "vectorizer/picture_layer.h"
#include "video/aligned_alloc.h"
#include "video/plane_memory.h"

namespace nox::vectorizer {

namespace {

using video::plane_extent;
using video::plane_sample;
using video::samples_in_plane;

// Even, so that a chroma row belongs to one band. Sixteen rows of 1920 samples and their bits stay
// in the first-level cache until they are drawn.
constexpr std::int32_t kBandRows = 16;

// Rows of edges above and below a row that its closing looks at.
constexpr std::int32_t kClosingReach = 2;

// Rows of `words` words with zeroed guards before, between and behind them.
std::size_t guarded_words(std::int32_t rows, std::size_t words) {
  return static_cast<std::size_t>(rows) * (words + kGuardWords) + kGuardWords;
}

// Fills row `y` of a plane with the page from sample `from` on, padding included.
void fill_row(const NoxVideoFrame &out, int p, std::int32_t y, std::int64_t from) {
  if (y >= out.plane_heights[p]) return;
  const std::int64_t length = std::abs(std::int64_t{out.strides[p]}) - from;
  const std::int64_t rest = samples_in_plane(out, p, from, y, std::max<std::int64_t>(length, 0));
  if (rest > 0) {
    std::memset(plane_sample(out, p, from, y), page_value(p), static_cast<std::size_t>(rest));
  }
}

// The rows of the page that the picture does not reach.
void fill_below(const NoxVideoFrame &out, int p, std::int32_t y) {
  for (; y < out.plane_heights[p]; ++y) fill_row(out, p, y, 0);
}

}  // namespace

FrameSweep::FrameSweep(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
  const std::size_t words = block_row_words(width);
  constexpr std::int32_t kRows[] = {kBandRows + 2 * kClosingReach, kBandRows + 2, kBandRows};
  std::size_t total = words + kGuardWords;
  for (const std::int32_t rows : kRows) total += guarded_words(rows, words);
  const std::size_t bytes = total * sizeof(std::uint64_t);
  block_ = static_cast<std::uint64_t *>(nox_aligned_alloc(kNoxAlignment, bytes));
  std::memset(block_, 0, bytes);

  std::uint64_t *next = block_;
  const auto take = [&next, words](std::int32_t rows) -> BitRows {
    std::uint64_t *first = next + kGuardWords;
    next += guarded_words(rows, words);
    return {first, words, words + kGuardWords, rows};
  };
  edges_ = take(kRows[0]);
  dilated_ = take(kRows[1]);
  lasting_ = take(kRows[2]);
  any_of_pair_ = next;
  both_of_pair_ = next + words / 2;
}

FrameSweep::~FrameSweep() {
  nox_aligned_free(block_);
}

// Edges of the rows first to end - 1 of the picture into `rows`. The outermost row and column on
// each side, and the ones before them on the right and below, have none.
void FrameSweep::mark_edges(const NoxVideoFrame &in, std::int32_t first, std::int32_t end,
                            BitRows rows) const {
  const bool narrow = width_ < 4;
  const std::int32_t inner_first = std::clamp(1, first, end);
  const std::int32_t inner_end = narrow ? inner_first : std::clamp(height_ - 2, inner_first, end);
  for (std::int32_t y = first; y < end; ++y) {
    if (y >= inner_first && y < inner_end) continue;
    std::memset(rows.row(y - first), 0, rows.words * sizeof(std::uint64_t));
  }
  if (inner_first == inner_end) return;
  const std::ptrdiff_t stride = in.strides[0];
  const std::ptrdiff_t above = stride * (inner_first - 1);
  const std::ptrdiff_t readable = plane_extent(stride, width_, height_).end - above;
  find_edges(in.planes[0] + above, stride, width_, readable,
             rows.slice(inner_first - first, inner_end - inner_first));
}

void FrameSweep::draw_luma(const NoxVideoFrame &in, const NoxVideoFrame &out,
                           std::int32_t y) const {
  const std::int32_t samples = y < out.height ? std::min(width_, out.width) : 0;
  if (samples > 0) {
    draw_luma_row(plane_sample(out, 0, 0, y), plane_sample(in, 0, 0, y),
                  lasting_.row(y % kBandRows), static_cast<std::size_t>(samples));
  }
  fill_row(out, 0, y, std::max(samples, 0));
}

// Chroma row `r` of both planes; the luma rows of the band are known.
void FrameSweep::draw_chroma(const NoxVideoFrame &in, const NoxVideoFrame &out, std::int32_t r) {
  // Of two rows of the mask the first one counts.
  split_pairs(lasting_.row(2 * r % kBandRows), lasting_.words, any_of_pair_, both_of_pair_);
  for (int p : {1, 2}) draw_chroma_row(in, out, p, r);
}

void FrameSweep::draw_chroma_row(const NoxVideoFrame &in, const NoxVideoFrame &out, int p,
                                 std::int32_t r) {
  const std::int32_t width = std::min(width_, out.width);
  const std::int32_t columns = 2 * r < out.height && width > 0 ? width / 2 + width % 2 : 0;
  const std::int64_t samples =
      std::min(samples_in_plane(out, p, 0, r, columns), samples_in_plane(in, p, 0, r, columns));
  if (samples > 0) {
    nox::vectorizer::draw_chroma_row(plane_sample(out, p, 0, r), plane_sample(in, p, 0, r),
                                     any_of_pair_, both_of_pair_,
                                     static_cast<std::size_t>(samples));
  }
  fill_row(out, p, r, samples);
}

template <typename Draw>
void FrameSweep::for_each_band(const NoxVideoFrame &in, MaskCounters &in_all, MaskCounters &in_any,
                               Draw draw) {
  // edges_ is rows y - 2 to y + rows + 1 of the picture, for the band of rows from y on.
  const BitRows ahead = edges_.slice(2 * kClosingReach, kBandRows);
  mark_edges(in, -kClosingReach, kClosingReach, edges_);
  for (std::int32_t y = 0; y < height_; y += kBandRows) {
    const std::int32_t rows = std::min(kBandRows, height_ - y);
    mark_edges(in, y + kClosingReach, y + kClosingReach + rows, ahead);
    const BitRows lasting = lasting_.slice(0, rows);
    close_edges(edges_, dilated_, lasting);
    in_all.step(y, lasting);
    in_any.step(y, lasting);
    draw(y, lasting);
    std::memmove(edges_.data, edges_.row(rows),
                 2 * edges_.pitch * kClosingReach * sizeof(std::uint64_t));
  }
}

void FrameSweep::draw_rows(const NoxVideoFrame &in, const NoxVideoFrame &out, MaskCounters &in_all,
                           MaskCounters &in_any) {
  for_each_band(in, in_all, in_any, [&](std::int32_t y, const BitRows &lasting) {
    const std::int32_t end = y + lasting.count;
    for (std::int32_t r = y; r < end; ++r) draw_luma(in, out, r);
    for (std::int32_t r = y / 2; r < (end + 1) / 2; ++r) draw_chroma(in, out, r);
  });
  fill_below(out, 0, height_);
  for (int p : {1, 2}) fill_below(out, p, (height_ + 1) / 2);
}

void FrameSweep::draw_layer(const NoxVideoFrame &in, const NoxVideoFrame &out, MaskCounters &in_all,
                            MaskCounters &in_any) {
  PictureLayer layer(in);
  for_each_band(in, in_all, in_any, [&layer](std::int32_t y, const BitRows &lasting) {
    for (std::int32_t r = 0; r < lasting.count; ++r) layer.set_alpha(y + r, lasting.row(r));
  });
  layer.draw_onto(out);
}

void FrameSweep::draw(const NoxVideoFrame &in, const NoxVideoFrame &out, MaskCounters &in_all,
                      MaskCounters &in_any) {
  if (rows_are_apart(in, out)) {
    draw_rows(in, out, in_all, in_any);
  } else {
    draw_layer(in, out, in_all, in_any);
  }
}

}  // namespace nox::vectorizer
