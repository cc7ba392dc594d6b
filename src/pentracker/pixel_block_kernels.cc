#include "pentracker/pixel_block_kernels.h"

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

// A row of at least a vector; the last vector overlaps the one before.
HWY_INLINE void write_row(PixelVector steps, const PixelBlock &block, std::int32_t y,
                          BlobPixel *out) {
  const Pixels d;
  auto *to = reinterpret_cast<std::uint64_t *>(out);
  const std::int32_t width = block.end - block.begin;
  for (std::int32_t i = 0; i < width - lanes(); i += lanes()) {
    hn::StoreU(pixels_from(steps, block.begin + i, y), d, to + i);
  }
  hn::StoreU(pixels_from(steps, block.end - lanes(), y), d, to + width - lanes());
}

// The same past the cache: all vectors are aligned but those at the ends, where the row is not.
HWY_INLINE void stream_row(PixelVector steps, const PixelBlock &block, std::int32_t y,
                           BlobPixel *out) {
  const Pixels d;
  auto *to = reinterpret_cast<std::uint64_t *>(out);
  const std::int32_t width = block.end - block.begin;
  const auto bytes = static_cast<std::uintptr_t>(lanes()) * sizeof(BlobPixel);
  const auto over = reinterpret_cast<std::uintptr_t>(out) % bytes;
  std::int32_t i = 0;
  if (over != 0) {
    hn::StoreU(pixels_from(steps, block.begin, y), d, to);
    i = static_cast<std::int32_t>((bytes - over) / sizeof(BlobPixel));
  }
  for (; i <= width - lanes(); i += lanes()) {
    hn::Stream(pixels_from(steps, block.begin + i, y), d, to + i);
  }
  if (i != width) {
    hn::StoreU(pixels_from(steps, block.end - lanes(), y), d, to + width - lanes());
  }
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

HWY_INLINE void write_short_row(const PixelBlock &block, std::int32_t y, BlobPixel *out) {
  for (std::int32_t x = block.begin; x < block.end; ++x) write_pixel(out++, x, y);
}

template <bool kStream>
HWY_INLINE void write_block(PixelVector steps, const PixelBlock &block, BlobPixel *out) {
  const std::int32_t width = block.end - block.begin;
  if (width <= 3) return write_narrow(block, out);
  for (std::int32_t y = block.top; y <= block.bottom; ++y, out += width) {
    if (width < lanes()) {
      write_short_row(block, y, out);
    } else if (kStream && width >= kStreamWidth) {
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
