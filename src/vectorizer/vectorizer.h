// Turns a video into a drawing of itself: washed out towards white, but for edges that last.
#ifndef VECTORIZER_VECTORIZER_H_
#define VECTORIZER_VECTORIZER_H_

#include <cstdint>

#include "masks/morphology.h"
#include "vectorizer/mask_ring.h"
#include "video/nox_video_frame.h"

namespace nox::vectorizer {
class FrameSweep;
}

// The history of one video. Rings and sweep are null until the first frame and are made anew,
// empty, whenever the size of the frames changes.
struct VectorizerState {
  MaskRing *ring_short;         // owned; an edge lasts when all of these masks have it
  MaskRing *ring_long;          // owned; it is shown while one of these masks has it
  StructuringElement *element;  // owned; the cross of a pixel and its four neighbours
  std::int32_t width;           // of the frames so far; 0 before the first
  std::int32_t height;
  nox::vectorizer::FrameSweep *sweep;  // owned
};

// Masks in the two rings.
inline constexpr std::int32_t kVectorizerShortFrames = 100;
inline constexpr std::int32_t kVectorizerLongFrames = 500;

// Makes a state without history. Release it with vectorizer_free.
VectorizerState *vectorizer_new();

// Releases the state; null is ignored.
void vectorizer_free(VectorizerState *state);

// Draws the next frame `in` of a video into the planes of `out`: both planar 4:2:0 and usually of
// one size. Always returns 1. The two may be one frame, and they and their planes may share memory
// in any way: the drawing is that of `in` as it was before.
//
// A pixel whose closed edge was found in each of the last 100 frames, this one included, has its
// luma unchanged in the next 500 drawings from this one on. All other luma is (255 * 48 + y * 16 +
// 32) >> 6. Chroma is blended towards 128 likewise, with the mean of the opacities of the two
// pixels above it (16 and 64, of 64), rounded up. Frames of another size, also when only the height
// differs, start without history.
//
// Every chroma sample of (width + 1) / 2 columns and (height + 1) / 2 rows is drawn that both
// planes own. What is behind and below the picture in the planes of `out` becomes white, padding
// included; where that holds samples of another plane (U and V side by side), these are drawn as
// that plane's. The samples of an alpha plane stay as they are. A frame without pixels does
// nothing.
std::int32_t vectorizer_process(VectorizerState *state, const NoxVideoFrame *in,
                                const NoxVideoFrame *out);

#endif  // VECTORIZER_VECTORIZER_H_
