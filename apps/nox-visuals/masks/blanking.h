// Makes a frame black where it is hidden, and darker everywhere.
#ifndef NOX_VISUALS_MASKS_BLANKING_H_
#define NOX_VISUALS_MASKS_BLANKING_H_

#include <cstdint>
#include <vector>

#include "nox-visuals/masks/picture_mask.h"
#include "video/nox_video_frame.h"

namespace nox::app {

// What is blanked becomes black, of which the tracker makes nothing.
inline constexpr std::uint8_t kBlackLuma = 16;
inline constexpr std::uint8_t kGrey = 128;  // in both chroma planes

// The hidden parts of the frames of one size as spans of samples.
class Blanking {
 public:
  // Hides nothing.
  Blanking() = default;

  // For frames of the mask's size; of others it hides what they have of it. A chroma sample is
  // hidden with any of its four pixels.
  explicit Blanking(const PictureMask &mask);

  // In one pass over a planar 4:2:0 frame: takes `darker`, unless it is 0, from every luma sample,
  // but never below kBlackLuma; and blanks what is hidden. Nothing but samples is touched, and of
  // an alpha plane nothing.
  void apply(NoxVideoFrame *frame, std::uint8_t darker) const;

 private:
  struct Span {
    std::int32_t row, begin, length;
  };
  using Spans = std::vector<Span>;  // by their rows

  static Spans spans_of(const PictureMask &mask);
  static void blank(NoxVideoFrame *frame, int plane, const Spans &spans, std::uint8_t value);
  void darken(NoxVideoFrame *frame, std::uint8_t darker) const;

  Spans luma_, chroma_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_MASKS_BLANKING_H_
