#include "scaler/indexed_filter.h"

#include <algorithm>

namespace nox::scaler {
namespace {

// With 4 taps the sums along a row are kept in 16 bits, saturated; they can only exceed upwards.
constexpr std::int32_t kLargest16 = 32767;

void filter_along_row(const FilterCoefficients &coefficients, const AxisPositions &columns,
                      const std::uint8_t *src, std::int32_t *sums) {
  const std::int32_t limit = coefficients.taps == 4 ? kLargest16 : INT32_MAX;
  const std::uint16_t *index = columns.indices.data();
  for (std::int32_t x = 0; x < columns.out_count; ++x) {
    const std::int32_t *taps = coefficients.fixed_taps[columns.phases[static_cast<std::size_t>(x)]];
    std::int32_t sum = 0;
    for (std::int32_t t = 0; t < coefficients.taps; ++t) sum += taps[t] * src[*index++];
    sums[x] = std::min(sum, limit);
  }
}

void round_row(const std::int32_t *sums, std::int32_t width, std::int32_t shift,
               std::uint8_t *out) {
  const std::int32_t half = 1 << (shift - 1);
  for (std::int32_t x = 0; x < width; ++x) {
    out[x] = static_cast<std::uint8_t>(std::clamp((sums[x] + half) >> shift, 0, 255));
  }
}

// The filtered rows still wanted: any kMaxTaps successive ones fall into different slots.
class RowCache {
 public:
  RowCache(std::int32_t *memory, std::size_t width) : memory_(memory), width_(width) {
    std::fill_n(held_, kMaxTaps, -1);
  }
  std::int32_t *slot(std::int32_t y) { return memory_ + index(y) * width_; }
  bool holds(std::int32_t y) const { return held_[index(y)] == y; }
  void mark(std::int32_t y) { held_[index(y)] = y; }

 private:
  static std::size_t index(std::int32_t y) { return static_cast<std::size_t>(y % kMaxTaps); }

  std::int32_t *memory_;
  std::size_t width_;
  std::int32_t held_[kMaxTaps];
};

}  // namespace

std::size_t indexed_filter_words(std::int32_t out_width) {
  return static_cast<std::size_t>(out_width) * (kMaxTaps + 1);
}

void indexed_filter(const FilterCoefficients &coefficients, const AxisPositions &columns,
                    const AxisPositions &rows, ReducedRows &src, const DestinationPlane &dst,
                    std::int32_t *scratch) {
  const auto width = static_cast<std::size_t>(columns.out_count);
  std::int32_t *sums = scratch;
  RowCache cache(scratch + width, width);
  const std::uint16_t *index = rows.indices.data();
  for (std::int32_t y = 0; y < rows.out_count; ++y) {
    const std::int32_t *taps = coefficients.fixed_taps[rows.phases[static_cast<std::size_t>(y)]];
    std::fill_n(sums, width, 0);
    for (std::int32_t t = 0; t < coefficients.taps; ++t) {
      const std::int32_t row = *index++;
      if (!cache.holds(row)) {
        filter_along_row(coefficients, columns, src.row(row, 0), cache.slot(row));
        cache.mark(row);
      }
      const std::int32_t *filtered = cache.slot(row);
      for (std::size_t x = 0; x < width; ++x) sums[x] += taps[t] * filtered[x];
    }
    round_row(sums, columns.out_count, 2 * coefficients.shift, dst.row(y));
  }
}

}  // namespace nox::scaler
