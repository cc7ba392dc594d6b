// A QR code for tests that are built without the scene generator.
#ifndef SUPPORT_QR_SAMPLE_H_
#define SUPPORT_QR_SAMPLE_H_

#include <cstddef>

#include "video/nox_video_frame.h"

namespace nox::test {

// Version 1, error correction level L.
inline constexpr const char *kQrSamplePayload = "noxvisuals";
inline constexpr int kQrSampleModules = 21;
inline constexpr const char *kQrSample[kQrSampleModules] = {
    "#######...#.#.#######", "#.....#.#.#.#.#.....#", "#.###.#.#.##..#.###.#",
    "#.###.#.....#.#.###.#", "#.###.#.#####.#.###.#", "#.....#.###...#.....#",
    "#######.#.#.#.#######", "........#............", "##.#..##..###.###.##.",
    "..###..##..#.#.##.###", "..##..#..#.#..##.#..#", "#.###..#....#.#..#.#.",
    ".....###.#.#...###.#.", "........#....##..##.#", "#######.##.##..#####.",
    "#.....#.........#..##", "#.###.#...#.#....#.#.", "#.###.#.#....##.##.##",
    "#.###.#....#.#.##...#", "#.....#.#..##...#....", "#######.#.#......#.#.",
};

// Draws it into the luma, black on white, `module` pixels to a module, with a quiet zone of two
// modules around it; what lies outside of the picture is left out.
inline void draw_qr_sample(NoxVideoFrame *frame, int left, int top, int module) {
  const auto dark = [](int column, int row) {
    return column >= 0 && column < kQrSampleModules && row >= 0 && row < kQrSampleModules &&
           kQrSample[row][column] == '#';
  };
  const int side = (kQrSampleModules + 4) * module;
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      if (left + x < 0 || left + x >= frame->width || top + y < 0 || top + y >= frame->height) {
        continue;
      }
      frame->planes[0][static_cast<std::ptrdiff_t>(top + y) * frame->strides[0] + left + x] =
          dark(x / module - 2, y / module - 2) ? 0 : 255;
    }
  }
}

}  // namespace nox::test

#endif  // SUPPORT_QR_SAMPLE_H_
