// Small frames of any size, layout and format, with pens, codes and standing edges in them.
#ifndef NOXVISUALS_SOAK_FRAMES_H_
#define NOXVISUALS_SOAK_FRAMES_H_

#include <gst/video/video.h>

#include "support/random.h"
#include "video/nox_video_frame.h"

namespace nox::test {

// How the planes lie in a buffer.
enum class BufferLayout {
  kPlain,   // as GStreamer lays them out
  kPadded,  // longer rows, told by a GstVideoMeta
  kShort,   // longer rows, and the memory ends with the last sample
};

// One size, format and layout, and the picture that its frames share.
class SoakScene {
 public:
  SoakScene(GstVideoFormat format, Random *random);
  // The same every time, whatever went before.
  static SoakScene at_rest();

  const GstVideoInfo &info() const { return info_; }
  // Noise on both sides of the scene's edge, now and then a pen or a code; padding is noise.
  GstBuffer *next_frame(Random *random) const;

 private:
  SoakScene(GstVideoFormat format, int width, int height, BufferLayout layout);
  GstBuffer *new_buffer(Random *random) const;
  void draw(NoxVideoFrame *frame, Random *random) const;

  GstVideoInfo info_{};
  BufferLayout layout_ = BufferLayout::kPlain;
  int padding_ = 0;
  int edge_ = 0;  // column of the standing edge
};

}  // namespace nox::test

#endif  // NOXVISUALS_SOAK_FRAMES_H_
