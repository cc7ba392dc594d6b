// Pictures of 1920 by 1080 as the benchmarks keep them: in blocks of memory.
#ifndef SUPPORT_FULL_HD_H_
#define SUPPORT_FULL_HD_H_

#include <cstddef>
#include <cstdint>

#include "video/nox_video_frame.h"

namespace nox::bench {

inline constexpr std::int32_t kWidth = 1920;
inline constexpr std::int32_t kHeight = 1080;
inline constexpr std::size_t kLumaBytes = std::size_t{kWidth} * kHeight;
inline constexpr std::size_t kFrameBytes = kLumaBytes * 3 / 2;

// A block of kFrameBytes as an I420 picture without padding.
inline NoxVideoFrame frame_in(std::uint8_t *block) {
  NoxVideoFrame frame{};
  frame.format = kNoxFormatI420;
  frame.width = kWidth;
  frame.height = kHeight;
  frame.n_planes = 3;
  for (int p = 0; p < 3; ++p) {
    frame.planes[p] = block;
    frame.strides[p] = frame.plane_widths[p] = p == 0 ? kWidth : kWidth / 2;
    frame.plane_heights[p] = p == 0 ? kHeight : kHeight / 2;
    block += std::ptrdiff_t{frame.strides[p]} * frame.plane_heights[p];
  }
  return frame;
}

}  // namespace nox::bench

#endif  // SUPPORT_FULL_HD_H_
