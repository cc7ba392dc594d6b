// Resampling of 8-bit planes to another size, through interchangeable implementations.
//
// A Scaler is told the two sizes once (scaler_select), builds whatever tables they need, and from
// then on scaler_process does nothing but arithmetic: it allocates no memory and takes no lock. One
// Scaler serves one thread at a time; the tables of operations are constant and shared.
#ifndef SCALER_SCALER_H_
#define SCALER_SCALER_H_

#include <cstdint>

#include "video/nox_video_frame.h"

// A picture's width and height, in samples.
struct ScalerSize {
  std::int32_t width;
  std::int32_t height;
};

struct Scaler;

// The operations of one implementation; an operation that it does not have is null. Booleans are
// 1 or 0. `init` builds `priv` for the sizes in the Scaler, `reinit` rebuilds its tables in place,
// `destroy` releases it and sets it to null. `process` resamples every plane of `src`; `supports`
// tells whether a pair of positive sizes can be handled; `taps` is the filter length in use.
struct ScalerOps {
  std::int32_t (*id)();
  int (*init)(Scaler *scaler);
  int (*process)(Scaler *scaler, const NoxVideoFrame *src, NoxVideoFrame *dst);
  int (*supports)(ScalerSize in, ScalerSize out);
  int (*reinit)(Scaler *scaler);
  void (*destroy)(Scaler *scaler);
  std::int32_t (*taps)(Scaler *scaler);
};

// The state of one resampling. All zero before the first scaler_select.
struct Scaler {
  const ScalerOps *ops;   // null until scaler_select has run
  std::int32_t in_width;  // the sizes of the last selection, stored as they were given
  std::int32_t in_height;
  std::int32_t out_width;
  std::int32_t out_height;
  void *priv;  // owned by `ops`; null where it needs nothing
};

extern const ScalerOps halve_scaler;      // id 0: copies, and means over whole blocks
extern const ScalerOps separable_scaler;  // id 1: polyphase filter, any ratio
extern const ScalerOps tiled_scaler;      // id 2: polyphase filter behind a box reduction
extern const ScalerOps null_scaler;       // id -1: does nothing, and its init fails

// Sets the whole record to zero, without releasing anything, and returns 0.
int scaler_reset(Scaler *scaler);

// Chooses the implementation for pictures of size `in` resampled to size `out` and builds its
// tables. Returns 1, or 0 when nothing can do it (a size that is not positive, an odd output size,
// an output width that no implementation accepts); then null_scaler is chosen and scaler_process
// leaves its destination as it is. The sizes are stored in either case, and the tables of an
// earlier selection are released. An odd input size is fine.
int scaler_select(Scaler *scaler, ScalerSize in, ScalerSize out);

// Resamples the planes of `src`, of the selected input size, into those of `dst`, which the caller
// has allocated for the selected output size. How many planes is told by `src`; planes 1 and 2 have
// half the size both ways, truncated. Source and destination must not overlap. Nothing outside the
// planes is read, nothing outside the output pixels is written, padding of rows included. A plane
// whose pointer is null, or whose width and height in its frame are less than what would be read or
// written, is left as it is. Not to be called before scaler_select.
void scaler_process(Scaler *scaler, const NoxVideoFrame *src, NoxVideoFrame *dst);

// Releases the tables. The implementation and the sizes stay in the record, which has to be
// selected again before it is used again; a second call does nothing.
void scaler_destroy(Scaler *scaler);

// The two filter kernels, as functions of the distance in (scaled) samples. Both are 0 beyond a
// distance of 2 and return 0 for a magnitude below 1e-7.
//
// sinc(x) * sinc(x / 2), with sinc(u) = sin(pi u) / (pi u).
double scaler_kernel_lanczos2(double x);
// The cubic of Mitchell and Netravali with B = C = 1/3, times 6: taps are normalised anyway.
double scaler_kernel_cubic(double x);

#endif  // SCALER_SCALER_H_
