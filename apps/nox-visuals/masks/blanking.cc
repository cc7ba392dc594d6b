#include "nox-visuals/masks/blanking.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "nox-visuals/masks/darkening_kernels.h"

namespace nox::app {
namespace {

// Half the size; a sample is hidden with any of the pixels that it covers.
PictureMask halved(const PictureMask &mask) {
  PictureMask half((mask.width() + 1) / 2, (mask.height() + 1) / 2);
  for (int y = 0; y < mask.height(); ++y) {
    for (int x = 0; x < mask.width(); ++x) {
      if (mask.hidden(x, y)) half.hide(x / 2, y / 2);
    }
  }
  return half;
}

// Samples of a span that a plane has.
std::size_t length_in(const NoxVideoFrame &frame, int plane, std::int32_t row, std::int32_t begin,
                      std::int32_t length) {
  if (row >= frame.plane_heights[plane]) return 0;
  return static_cast<std::size_t>(std::clamp(frame.plane_widths[plane] - begin, 0, length));
}

std::uint8_t *row_of(const NoxVideoFrame &frame, int plane, std::int32_t row) {
  return frame.planes[plane] + static_cast<std::ptrdiff_t>(row) * frame.strides[plane];
}

}  // namespace

Blanking::Blanking(const PictureMask &mask)
    : luma_(spans_of(mask)), chroma_(spans_of(halved(mask))) {}

Blanking::Spans Blanking::spans_of(const PictureMask &mask) {
  Spans spans;
  for (int y = 0; y < mask.height(); ++y) {
    for (int x = 0; x < mask.width();) {
      const int begin = x;
      while (x < mask.width() && mask.hidden(x, y)) ++x;
      if (x > begin) {
        spans.push_back({y, begin, x - begin});
      } else {
        ++x;
      }
    }
  }
  return spans;
}

// Spans lie so far from each other that no processor expects the next one by itself. The compiler
// takes a function that only does that for one without effect, so it is not one of its own.
void Blanking::blank(NoxVideoFrame *frame, int plane, const Spans &spans, std::uint8_t value) {
  constexpr std::size_t kAhead = 16;
  constexpr std::size_t kLine = 64;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (i + kAhead < spans.size()) {
      const Span &next = spans[i + kAhead];
      const std::uint8_t *samples = row_of(*frame, plane, next.row) + next.begin;
      const std::size_t length = length_in(*frame, plane, next.row, next.begin, next.length);
      for (std::size_t k = 0; k < length; k += kLine) __builtin_prefetch(samples + k, 1);
    }
    std::memset(row_of(*frame, plane, spans[i].row) + spans[i].begin, value,
                length_in(*frame, plane, spans[i].row, spans[i].begin, spans[i].length));
  }
}

// Rows that are darkened are blanked while they are in the cache.
void Blanking::darken(NoxVideoFrame *frame, std::uint8_t darker) const {
  auto span = luma_.begin();
  for (std::int32_t y = 0; y < frame->plane_heights[0]; ++y) {
    std::uint8_t *row = row_of(*frame, 0, y);
    masks::darken_row(row, static_cast<std::size_t>(frame->plane_widths[0]), darker, kBlackLuma);
    for (; span != luma_.end() && span->row == y; ++span) {
      std::memset(row + span->begin, kBlackLuma,
                  length_in(*frame, 0, y, span->begin, span->length));
    }
  }
}

void Blanking::apply(NoxVideoFrame *frame, std::uint8_t darker) const {
  if (darker > 0) {
    darken(frame, darker);
  } else {
    blank(frame, 0, luma_, kBlackLuma);
  }
  for (int plane = 1; plane <= 2; ++plane) blank(frame, plane, chroma_, kGrey);
}

}  // namespace nox::app
