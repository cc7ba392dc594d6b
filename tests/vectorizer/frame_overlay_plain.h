// The overlay sample by sample.
#ifndef VECTORIZER_FRAME_OVERLAY_PLAIN_H_
#define VECTORIZER_FRAME_OVERLAY_PLAIN_H_

#include <cstdint>

#include "video/nox_video_frame.h"

namespace nox::test {

// The bytes that a plane owns, from its first sample on: all of its rows with their padding.
struct PlainExtent {
  std::int64_t first, end;
};
PlainExtent extent_plain(const NoxVideoFrame &frame, int p);

std::uint8_t blend_plain(int dst, int src, int alpha);

void video_frame_overlay_plain(const NoxVideoFrame &dst, const NoxVideoFrame &src, std::int64_t x,
                               std::int64_t y);

}  // namespace nox::test

#endif  // VECTORIZER_FRAME_OVERLAY_PLAIN_H_
