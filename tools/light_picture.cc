// light_picture: draws one frame of a pen of light in a room, and beside it what of it is above the
// pen tracker's threshold: bright samples white, strongly blue ones blue, strongly red ones red.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "pentracker/pen_tracker.h"
#include "scenes/lit_scene.h"
#include "scenes/lit_words.h"
#include "scenes/room.h"
#include "video/nox_video_frame.h"

namespace {

constexpr std::int32_t kWidth = kPenWorkWidth;
constexpr std::int32_t kHeight = kPenWorkHeight;
constexpr std::uint8_t kThreshold = 170;  // of the tracker

struct Colour {
  std::uint8_t y, u, v;
};
constexpr Colour kNothing = {16, 128, 128};
constexpr Colour kBright = {235, 128, 128};
constexpr Colour kBlue = {70, 210, 110};
constexpr Colour kRed = {90, 95, 220};

class Frame {
 public:
  Frame(std::int32_t width, std::int32_t height) {
    nox_video_frame_alloc(&frame_, kNoxFormatI420 | kNoxFormatStudioRange, width, height);
  }
  ~Frame() { nox_video_frame_free_planes(&frame_); }
  Frame(const Frame &) = delete;
  Frame &operator=(const Frame &) = delete;

  NoxVideoFrame *get() { return &frame_; }
  std::uint8_t &at(int plane, std::int32_t x, std::int32_t y) {
    return frame_.planes[plane][y * frame_.strides[plane] + x];
  }

 private:
  NoxVideoFrame frame_{};
};

Colour colour_of(Frame *picture, std::int32_t x, std::int32_t y) {
  if (picture->at(0, x, y) > kThreshold) return kBright;
  if (picture->at(1, x / 2, y / 2) > kThreshold) return kBlue;
  if (picture->at(2, x / 2, y / 2) > kThreshold) return kRed;
  return kNothing;
}

// The picture on the left, what reaches the threshold on the right.
void draw_both(Frame *picture, Frame *both) {
  for (std::int32_t y = 0; y < kHeight; ++y) {
    for (std::int32_t x = 0; x < kWidth; ++x) {
      const Colour above = colour_of(picture, x, y);
      both->at(0, x, y) = picture->at(0, x, y);
      both->at(0, kWidth + x, y) = above.y;
      if (x % 2 != 0 || y % 2 != 0) continue;
      both->at(1, x / 2, y / 2) = picture->at(1, x / 2, y / 2);
      both->at(2, x / 2, y / 2) = picture->at(2, x / 2, y / 2);
      both->at(1, (kWidth + x) / 2, y / 2) = above.u;
      both->at(2, (kWidth + x) / 2, y / 2) = above.v;
    }
  }
}

int write_frame(const NoxVideoFrame &frame) {
  for (int p = 0; p < frame.n_planes; ++p) {
    const std::size_t bytes = static_cast<std::size_t>(frame.strides[p]) *
                              static_cast<std::size_t>(frame.plane_heights[p]);
    if (std::fwrite(frame.planes[p], 1, bytes, stdout) != bytes) {
      std::perror("light_picture");
      return EXIT_FAILURE;
    }
  }
  return EXIT_SUCCESS;
}

int draw(const std::string &name, std::uint32_t index, const std::vector<std::string> &words) {
  constexpr float kNoise = 2;
  const nox::scenes::LitPen pen = nox::scenes::parse_lit_pen(words);
  const nox::scenes::Room room(name, kWidth, kHeight, pen.exposure, pen.range);
  const nox::scenes::LitScene scene(
      kWidth, kHeight, pen, index + 1,
      [&](std::uint32_t frame, NoxVideoFrame *picture) { room.render(frame, picture); });
  Frame picture(kWidth, kHeight);
  Frame both(2 * kWidth, kHeight);
  scene.render(index, kNoise, picture.get());
  draw_both(&picture, &both);
  return write_frame(*both.get());
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::fputs(
        "usage: light_picture ROOM FRAME [PEN...]\n"
        "ROOM and PEN are those of noxscene. Writes one I420 frame of 896x252 to standard "
        "output.\n",
        stderr);
    return EXIT_FAILURE;
  }
  try {
    return draw(argv[1], static_cast<std::uint32_t>(std::atoi(argv[2])), {argv + 3, argv + argc});
  } catch (const std::exception &error) {
    std::fprintf(stderr, "light_picture: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
