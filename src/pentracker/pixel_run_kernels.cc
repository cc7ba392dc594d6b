#include "pentracker/pixel_run_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pentracker/pixel_run_kernels.cc"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace nox::pentracker::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Pixels = hn::ScalableTag<std::uint64_t>;

// More pixels than this are not read again before they have left the cache: writing past the cache
// spares reading what was there. 65536 pixels are half a megabyte.
constexpr std::size_t kStreamFrom = 65536;

// Runs from here on are written as vectors; in noise nearly all are shorter.
constexpr std::int32_t kVectorFrom = 16;

void write_pixel(BlobPixel *out, std::int32_t x, std::int32_t y) {
  *out = {x, y};
}

// A pixel is stored as one 64-bit number, its x in the low half. `out` is aligned for vectors.
template <bool kStream>
HWY_INLINE std::int32_t write_vectors(BlobPixel *out, std::int32_t begin, std::int32_t end,
                                      std::int32_t y) {
  const Pixels d;
  const auto lanes = static_cast<std::int32_t>(hn::Lanes(d));
  auto *to = reinterpret_cast<std::uint64_t *>(out);
  const std::uint64_t first =
      static_cast<std::uint64_t>(y) << 32 | static_cast<std::uint64_t>(begin);
  auto pixels = hn::Iota(d, first);
  std::int32_t x = begin;
  for (; x + lanes <= end; x += lanes, to += lanes) {
    if (kStream) {
      hn::Stream(pixels, d, to);
    } else {
      hn::Store(pixels, d, to);
    }
    pixels = hn::Add(pixels, hn::Set(d, static_cast<std::uint64_t>(lanes)));
  }
  return x;
}

template <bool kStream>
HWY_INLINE void write_long_run(BlobPixel *out, const PixelRun &run) {
  const auto vector_bytes = static_cast<std::uintptr_t>(hn::Lanes(Pixels())) * sizeof(BlobPixel);
  std::int32_t x = run.begin;
  while (reinterpret_cast<std::uintptr_t>(out + (x - run.begin)) % vector_bytes != 0) {
    write_pixel(out + (x - run.begin), x, run.y);
    ++x;
  }
  x = write_vectors<kStream>(out + (x - run.begin), x, run.end, run.y);
  for (; x < run.end; ++x) write_pixel(out + (x - run.begin), x, run.y);
}

// Up to three pixels are written without a branch on their number.
HWY_INLINE void write_short_run(BlobPixel *out, const PixelRun &run) {
  const std::int32_t last = run.end - run.begin - 1;
  write_pixel(out, run.begin, run.y);
  write_pixel(out + last / 2, run.begin + last / 2, run.y);
  write_pixel(out + last, run.end - 1, run.y);
  if (last < 3) return;
  for (std::int32_t i = 1; i < last; ++i) write_pixel(out + i, run.begin + i, run.y);
}

template <bool kStream>
HWY_INLINE void write_runs(const PixelRun *runs, std::int32_t count, std::int32_t *next,
                           BlobPixel *pixels) {
  for (const PixelRun *run = runs; run != runs + count; ++run) {
    const std::int32_t length = run->end - run->begin;
    BlobPixel *out = pixels + next[run->group];
    next[run->group] += length;
    if (length < kVectorFrom) {
      write_short_run(out, *run);
    } else {
      write_long_run<kStream>(out, *run);
    }
  }
}

void WritePixelRuns(const PixelRun *runs, std::int32_t count, std::size_t pixel_count,
                    std::int32_t *next, BlobPixel *pixels) {
  if (pixel_count < kStreamFrom) {
    write_runs<false>(runs, count, next, pixels);
  } else {
    write_runs<true>(runs, count, next, pixels);
    hwy::FlushStream();
  }
}

}  // namespace
}  // namespace nox::pentracker::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::pentracker {

HWY_EXPORT(WritePixelRuns);

void write_pixel_runs(const PixelRun *runs, std::int32_t count, std::size_t pixel_count,
                      std::int32_t *next, BlobPixel *pixels) {
  HWY_DYNAMIC_DISPATCH(WritePixelRuns)(runs, count, pixel_count, next, pixels);
}

}  // namespace nox::pentracker
#endif  // HWY_ONCE
