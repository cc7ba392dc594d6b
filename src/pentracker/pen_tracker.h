// Finds a pen of light in a video: where it is, and whether it is pressed.
//
// The pen is a small bright spot inside a region that is strongly coloured in one chroma plane: in
// a blue (U) region it hovers, in a red (V) region it is pressed.
#ifndef PENTRACKER_PEN_TRACKER_H_
#define PENTRACKER_PEN_TRACKER_H_

#include <cstdint>

#include "masks/bitmask.h"
#include "masks/morphology.h"
#include "pentracker/blob_list.h"
#include "scaler/scaler.h"
#include "video/nox_video_frame.h"

// The size at which pictures are looked at, whatever their own.
inline constexpr std::int32_t kPenWorkWidth = 448;
inline constexpr std::int32_t kPenWorkHeight = 252;

// One tracker follows one stream and is used by one thread at a time.
struct PenTracker {
  Scaler luma_scaler;                    // from the picture to the work size
  Scaler chroma_scaler;                  // from half the picture to the work size
  std::int32_t last_width, last_height;  // for which the scalers were chosen; 0 before the first
  std::int32_t work_width, work_height;
  NoxVideoFrame luma_work_frame, u_work_frame, v_work_frame;
  BitMask *luma_mask, *u_mask, *v_mask;           // bright or strongly coloured samples
  BitMask *luma_dilated, *u_dilated, *v_dilated;  // the same, grown: what is labelled
  StructuringElement *luma_growth, *chroma_growth;
  BlobList *luma_blobs, *v_blobs, *u_blobs;
  Blob *pen;             // of the last frame, or null; belongs to luma_blobs
  std::uint8_t pressed;  // whether it was pressed
  std::uint8_t found;    // whether the last frame had a pen
};

// A tracker that has seen nothing; release it with pen_tracker_free.
PenTracker *pen_tracker_new();

// Releases the tracker; null is ignored.
void pen_tracker_free(PenTracker *tracker);

// Looks at the next picture of the stream, planar 4:2:0 of any size and with any strides; an alpha
// plane is not looked at, and nothing but samples is read, no padding. Returns nonzero when it
// shows the pen, and then sets
//   x        (447 - centre x) / 448 of the pen at work size: 0 at the right edge of the picture,
//            mirrored as for somebody who faces the camera;
//   y        centre y / 252: 0 at the top;
//   pressed  1 or 0.
// Otherwise these keep what they held. `output` is neither read nor written and may be `frame`.
int pen_tracker_process(PenTracker *tracker, const NoxVideoFrame *frame, NoxVideoFrame *output,
                        float *x, float *y, std::int32_t *pressed);

// Which blobs are kept; `tracker` is the PenTracker. Chroma: at least 5 by 5. Luma: at most 30 by
// 30, and inside a blob that the tracker's U or V list holds for the current frame.
int luma_blob_filter(const Blob *blob, void *tracker);
int chroma_blob_filter(const Blob *blob, void *tracker);

#endif  // PENTRACKER_PEN_TRACKER_H_
