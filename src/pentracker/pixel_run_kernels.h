// From runs of pixels to lists of pixels.
#ifndef PENTRACKER_PIXEL_RUN_KERNELS_H_
#define PENTRACKER_PIXEL_RUN_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "pentracker/blob_list.h"

namespace nox::pentracker {

// Pixels begin to end - 1 of row y, which belong to one group.
struct PixelRun {
  std::int32_t begin, end, y, group;
};

// Writes the pixels of `count` runs, each run behind those of its group before: `next` holds, for
// each group, the place in `pixels` at which its first run goes, and moves on. `pixel_count` is how
// many that will be.
void write_pixel_runs(const PixelRun *runs, std::int32_t count, std::size_t pixel_count,
                      std::int32_t *next, BlobPixel *pixels);

}  // namespace nox::pentracker

#endif  // PENTRACKER_PIXEL_RUN_KERNELS_H_
