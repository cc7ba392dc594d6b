// From blocks of pixels to lists of pixels.
#ifndef PENTRACKER_PIXEL_BLOCK_KERNELS_H_
#define PENTRACKER_PIXEL_BLOCK_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "pentracker/blob_list.h"
#include "pentracker/pixel_groups.h"

namespace nox::pentracker {

// Writes the pixels of `count` blocks, row by row, each block behind those of its group before:
// `next` holds, for each group, the place in `pixels` at which its first block goes, and moves on.
// `pixel_count` is how many that will be.
void write_pixel_blocks(const PixelBlock *blocks, std::int32_t count, std::size_t pixel_count,
                        std::int32_t *next, BlobPixel *pixels);

}  // namespace nox::pentracker

#endif  // PENTRACKER_PIXEL_BLOCK_KERNELS_H_
