// Pictures of dots in regular rows, which cost the tracker most: what a search varies, and how one
// of its finds is kept.
#ifndef PENTRACKER_DOTTED_PICTURE_H_
#define PENTRACKER_DOTTED_PICTURE_H_

#include <array>
#include <cstdint>

#include "video/nox_video_frame.h"

namespace nox::test {

// What a sequence of pictures looks like; lengths in samples of the plane.
struct DottedPicture {
  std::int32_t scale;           // the picture is this many times 448 by 252
  std::int32_t pitch_x;         // from dot to dot
  std::int32_t pitch_y;         // from row to row
  std::int32_t dot_width;       //
  std::int32_t dot_height;      //
  std::int32_t stagger;         // every second row stands this much further right
  std::int32_t left_out;        // of a hundred dots, the same ones in all frames
  std::int32_t churn;           // of a hundred dots, other ones in each frame
  std::int32_t jitter;          // a dot stands up to this far off its place, anew in each frame
  std::int32_t growth;          // a dot is up to this much larger, anew in each frame
  std::int32_t shift_x;         // of all dots, a frame
  std::int32_t shift_y;         //
  std::int32_t colours;         // 1: U, 2: V, 3: both
  std::int32_t region_pitch;    // from region to region; 0: coloured all over
  std::int32_t region_side;     //
  std::int32_t region_shift_x;  // a frame
  std::uint32_t seed;           // of all that is left to chance

  auto operator<=>(const DottedPicture &) const = default;
};

// The values that the search may try, smallest and largest, in the order of the record.
struct DottedRange {
  std::int32_t DottedPicture::*member;
  std::int32_t low, high;
};
inline constexpr std::array<DottedRange, 16> kDottedRanges = {{
    {&DottedPicture::scale, 1, 2},
    {&DottedPicture::pitch_x, 2, 24},
    {&DottedPicture::pitch_y, 2, 24},
    {&DottedPicture::dot_width, 1, 12},
    {&DottedPicture::dot_height, 1, 12},
    {&DottedPicture::stagger, 0, 12},
    {&DottedPicture::left_out, 0, 60},
    {&DottedPicture::churn, 0, 60},
    {&DottedPicture::jitter, 0, 4},
    {&DottedPicture::growth, 0, 4},
    {&DottedPicture::shift_x, -6, 6},
    {&DottedPicture::shift_y, -6, 6},
    {&DottedPicture::colours, 1, 3},
    {&DottedPicture::region_pitch, 0, 40},
    {&DottedPicture::region_side, 1, 20},
    {&DottedPicture::region_shift_x, -4, 4},
}};

// Draws frame `index` of the sequence into planar 4:2:0 planes, all samples of which are set.
void draw_dots(const DottedPicture &dots, std::int32_t index, NoxVideoFrame *frame);

}  // namespace nox::test

#endif  // PENTRACKER_DOTTED_PICTURE_H_
