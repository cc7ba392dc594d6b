#include "pentracker/pixel_block_kernels.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pentracker/pixel_block_kernels.cc"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace nox::pentracker::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// A pixel is stored as one 64-bit number, its x in the low half.
using Pixels = hn::ScalableTag<std::uint64_t>;
static_assert(sizeof(BlobPixel) == sizeof(std::uint64_t) && offsetof(BlobPixel, y) == 4);
static_assert(std::endian::native == std::endian::little);
using PixelVector = hn::Vec<Pixels>;

// More pixels than this are not read again before they have left the cache: writing past the cache
// spares reading what was there. 65536 pixels are half a megabyte.
constexpr std::size_t kStreamFrom = 65536;
// In shorter rows it is not worth while.
constexpr std::int32_t kStreamWidth = 64;

std::int32_t lanes() {
  return static_cast<std::int32_t>(hn::Lanes(Pixels()));
}

void write_pixel(BlobPixel *out, std::int32_t x, std::int32_t y) {
  *out = {x, y};
}

// The pixels right of (x, y), a vector of them.
HWY_INLINE PixelVector pixels_from(PixelVector steps, std::int32_t x, std::int32_t y) {
  const std::uint64_t first = static_cast<std::uint64_t>(y) << 32 | static_cast<std::uint64_t>(x);
  return hn::Add(steps, hn::Set(Pixels(), first));
}

// How many pixels from `out` on lie before the next place that is aligned for vectors.
HWY_INLINE std::int32_t to_alignment(const BlobPixel *out) {
  const auto vector = static_cast<std::uintptr_t>(lanes()) * sizeof(BlobPixel);
  const std::uintptr_t over = reinterpret_cast<std::uintptr_t>(out) % vector;
  return over == 0 ? 0 : static_cast<std::int32_t>((vector - over) / sizeof(BlobPixel));
}

// A row of at least a vector. All vectors are aligned but those at the ends, which overlap their
// neighbours.
HWY_INLINE void write_row(PixelVector steps, const PixelBlock &block, std::int32_t y,
                          BlobPixel *out) {
  const Pixels d;
  auto *to = reinterpret_cast<std::uint64_t *>(out);
  const std::int32_t width = block.end - block.begin;
  hn::StoreU(pixels_from(steps, block.begin, y), d, to);
  for (std::int32_t i = to_alignment(out); i <= width - lanes(); i += lanes()) {
    hn::Store(pixels_from(steps, block.begin + i, y), d, to + i);
  }
  hn::StoreU(pixels_from(steps, block.end - lanes(), y), d, to + width - lanes());
}

// The same past the cache. Nothing overlaps: a line that is written both ways costs dearly.
HWY_INLINE void stream_row(PixelVector steps, const PixelBlock &block, std::int32_t y,
                           BlobPixel *out) {
  const Pixels d;
  auto *to = reinterpret_cast<std::uint64_t *>(out);
  const std::int32_t width = block.end - block.begin;
  std::int32_t i = 0;
  for (; i < to_alignment(out); ++i) write_pixel(out + i, block.begin + i, y);
  for (; i <= width - lanes(); i += lanes()) {
    hn::Stream(pixels_from(steps, block.begin + i, y), d, to + i);
  }
  for (; i < width; ++i) write_pixel(out + i, block.begin + i, y);
}

// The rows of a block of up to three columns, the most of noise and of the rims of shapes, without
// a branch on their number.
HWY_INLINE void write_narrow(const PixelBlock &block, BlobPixel *out) {
  const std::int32_t last = block.end - block.begin - 1;
  for (std::int32_t y = block.top; y <= block.bottom; ++y, out += last + 1) {
    write_pixel(out, block.begin, y);
    write_pixel(out + last / 2, block.begin + last / 2, y);
    write_pixel(out + last, block.end - 1, y);
  }
}

// A block of one column and at least a vector of rows; the last vector overlaps the one before.
HWY_NOINLINE void write_column(PixelVector steps, const PixelBlock &block, BlobPixel *out) {
  const Pixels d;
  const PixelVector down = hn::ShiftLeft<32>(steps);
  auto *to = reinterpret_cast<std::uint64_t *>(out);
  const std::int32_t last = block.bottom + 1 - lanes();
  for (std::int32_t y = block.top; y < last; y += lanes(), to += lanes()) {
    hn::StoreU(pixels_from(down, block.begin, y), d, to);
  }
  to = reinterpret_cast<std::uint64_t *>(out) + (last - block.top);
  hn::StoreU(pixels_from(down, block.begin, last), d, to);
}

// The rows of a block that is narrower than a vector: each is written with a whole one, and the
// next row overwrites what was too much, as long as that lies within the block.
HWY_INLINE void write_short_rows(PixelVector steps, const PixelBlock &block, BlobPixel *out) {
  const std::int32_t width = block.end - block.begin;
  std::int32_t left = width * (block.bottom - block.top + 1);
  std::int32_t y = block.top;
  for (; left >= lanes(); ++y, left -= width, out += width) {
    hn::StoreU(pixels_from(steps, block.begin, y), Pixels(),
               reinterpret_cast<std::uint64_t *>(out));
  }
  for (; y <= block.bottom; ++y) {
    for (std::int32_t x = block.begin; x < block.end; ++x) write_pixel(out++, x, y);
  }
}

template <bool kStream>
HWY_INLINE void write_block(PixelVector steps, const PixelBlock &block, BlobPixel *out) {
  const std::int32_t width = block.end - block.begin;
  if (width <= 3) {
    if (HWY_UNLIKELY(block.bottom - block.top >= lanes()) && width == 1) {
      return write_column(steps, block, out);
    }
    return write_narrow(block, out);
  }
  if (width < lanes()) return write_short_rows(steps, block, out);
  for (std::int32_t y = block.top; y <= block.bottom; ++y, out += width) {
    if (kStream && width >= kStreamWidth) {
      stream_row(steps, block, y, out);
    } else {
      write_row(steps, block, y, out);
    }
  }
}

template <bool kStream>
HWY_INLINE void write_blocks(const PixelBlock *blocks, std::int32_t count, std::int32_t *next,
                             BlobPixel *pixels) {
  const PixelVector steps = hn::Iota(Pixels(), 0);
  for (const PixelBlock *block = blocks; block != blocks + count; ++block) {
    std::int32_t &place = next[block->group];
    BlobPixel *out = pixels + place;
    place += (block->end - block->begin) * (block->bottom - block->top + 1);
    write_block<kStream>(steps, *block, out);
  }
}

void WritePixelBlocks(const PixelBlock *blocks, std::int32_t count, std::size_t pixel_count,
                      std::int32_t *next, BlobPixel *pixels) {
  if (pixel_count < kStreamFrom) {
    write_blocks<false>(blocks, count, next, pixels);
  } else {
    write_blocks<true>(blocks, count, next, pixels);
    hwy::FlushStream();
  }
}

}  // namespace
}  // namespace nox::pentracker::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::pentracker {

HWY_EXPORT(WritePixelBlocks);

void write_pixel_blocks(const PixelBlock *blocks, std::int32_t count, std::size_t pixel_count,
                        std::int32_t *next, BlobPixel *pixels) {
  HWY_DYNAMIC_DISPATCH(WritePixelBlocks)(blocks, count, pixel_count, next, pixels);
}

}  // namespace nox::pentracker
#endif  // HWY_ONCE
