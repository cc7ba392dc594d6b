// noxscene: writes a generated scene as raw I420 frames, without padding, to standard output.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "scenes/edge_scene.h"
#include "scenes/lit_scene.h"
#include "scenes/lit_words.h"
#include "scenes/pen_scene.h"
#include "scenes/qr_scene.h"
#include "scenes/room.h"
#include "video/nox_video_frame.h"

namespace {

constexpr const char *kUsage =
    "usage: noxscene [--size WIDTHxHEIGHT] [--frames COUNT] [--truth FILE] SCENE\n"
    "SCENE is one of\n"
    "  qr PAYLOAD...  cards with QR codes\n"
    "  pen            a pen of light over a desk\n"
    "  edges          a desk whose edges come and go\n"
    "  room NAME PEN  a pen of light in a room: lit, white, dim, icons or red\n"
    "  over PEN       the same in front of COUNT raw frames from standard input\n"
    "PEN is any of pen=ball|bare|none speed=PIXELS open=SHARE exposure=FACTOR\n"
    "colours=FACTOR range=studio|full;\n"
    "FILE then tells where it is: frame, visible, pressed, x, y.\n"
    "WIDTH is a multiple of 8 and HEIGHT even. "
    "Writes COUNT I420 frames (default: 90 of 1280x720, meant for 30 a second) to standard "
    "output.\n";

struct Options {
  int width = 1280;
  int height = 720;
  int frames = 90;
  std::string truth;               // a file; empty: none
  std::vector<std::string> words;  // what is not an option
};

// False when the command line cannot be understood. Odd sizes are refused: a file of raw frames has
// no room for the rounding of their chroma.
bool parse(int argc, char **argv, Options *options) {
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--size" && i + 1 < argc) {
      if (std::sscanf(argv[++i], "%dx%d", &options->width, &options->height) != 2) return false;
    } else if (word == "--frames" && i + 1 < argc) {
      options->frames = std::atoi(argv[++i]);
    } else if (word == "--truth" && i + 1 < argc) {
      options->truth = argv[++i];
    } else if (word.starts_with("--")) {
      return false;
    } else {
      options->words.push_back(word);
    }
  }
  return options->width > 0 && options->height > 0 && options->width % 8 == 0 &&
         options->height % 2 == 0 && options->frames > 0 && !options->words.empty();
}

bool write_planes(const NoxVideoFrame &frame) {
  for (int p = 0; p < frame.n_planes; ++p) {
    const std::size_t bytes = static_cast<std::size_t>(frame.strides[p]) *
                              static_cast<std::size_t>(frame.plane_heights[p]);
    if (std::fwrite(frame.planes[p], 1, bytes, stdout) != bytes) return false;
  }
  return true;
}

// Renders frames `first` and on of a scene and writes them.
template <typename Scene>
int write_scene(Scene scene, const Options &options, std::uint32_t first) {
  NoxVideoFrame frame;
  nox_video_frame_alloc(&frame, kNoxFormatI420 | kNoxFormatStudioRange, options.width,
                        options.height);
  bool written = true;
  for (int i = 0; i < options.frames && written; ++i) {
    scene.render(first + static_cast<std::uint32_t>(i), &frame);
    written = write_planes(frame);
  }
  nox_video_frame_free_planes(&frame);
  if (!written) std::perror("noxscene");
  return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

// A lit scene as write_scene() takes it.
struct NoisyScene {
  nox::scenes::LitScene scene;
  float noise;

  void render(std::uint32_t index, NoxVideoFrame *frame) const {
    scene.render(index, noise, frame);
  }
};

void read_frame(NoxVideoFrame *frame) {
  for (int p = 0; p < frame->n_planes; ++p) {
    const std::size_t bytes = static_cast<std::size_t>(frame->strides[p]) *
                              static_cast<std::size_t>(frame->plane_heights[p]);
    if (std::fread(frame->planes[p], 1, bytes, stdin) != bytes) {
      throw std::runtime_error("standard input ended in mid-clip");
    }
  }
}

int write_lit_scene(const Options &options, const nox::scenes::LitPen &pen, float noise,
                    nox::scenes::LitScene::Background background) {
  const auto frames = static_cast<std::uint32_t>(options.frames);
  NoisyScene noisy{{options.width, options.height, pen, frames, std::move(background)}, noise};
  if (!options.truth.empty()) {
    std::ofstream file(options.truth);
    file << nox::scenes::truth_lines(noisy.scene, frames);
    if (!file.flush()) throw std::runtime_error(options.truth + ": cannot be written");
  }
  return write_scene(std::move(noisy), options, 0);
}

int write_room(const Options &options) {
  const auto pen = nox::scenes::parse_lit_pen({options.words.begin() + 2, options.words.end()});
  const nox::scenes::Room room(options.words[1], options.width, options.height, pen.exposure,
                               pen.range);
  constexpr float kNoise = 2;
  return write_lit_scene(options, pen, kNoise, [&](std::uint32_t index, NoxVideoFrame *frame) {
    room.render(index, frame);
  });
}

int write_over(const Options &options) {
  const auto pen = nox::scenes::parse_lit_pen({options.words.begin() + 1, options.words.end()});
  return write_lit_scene(options, pen, 0, [&](std::uint32_t /*index*/, NoxVideoFrame *frame) {
    read_frame(frame);
    if (pen.exposure != 1) nox::scenes::expose(frame, pen.exposure, pen.range);
  });
}

int write_named_scene(const Options &options) {
  const std::string &name = options.words[0];
  const std::size_t arguments = options.words.size() - 1;
  const int width = options.width;
  const int height = options.height;
  if (name == "qr" && arguments > 0) {
    return write_scene(
        nox::scenes::QrScene(width, height, {options.words.begin() + 1, options.words.end()}),
        options, 0);
  }
  if (name == "pen" && arguments == 0) {
    return write_scene(nox::scenes::PenScene(width, height), options, 0);
  }
  if (name == "edges" && arguments == 0) {
    return write_scene(nox::scenes::EdgeScene(width, height), options, 1);
  }
  if (name == "room" && arguments > 0) return write_room(options);
  if (name == "over") return write_over(options);
  std::fputs(kUsage, stderr);
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv) {
  Options options;
  if (!parse(argc, argv, &options)) {
    std::fputs(kUsage, stderr);
    return EXIT_FAILURE;
  }
  try {
    return write_named_scene(options);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "noxscene: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
