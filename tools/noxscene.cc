// noxscene: writes a generated scene as raw I420 frames, without padding, to standard output.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "scenes/edge_scene.h"
#include "scenes/pen_scene.h"
#include "scenes/qr_scene.h"
#include "video/nox_video_frame.h"

namespace {

constexpr const char *kUsage =
    "usage: noxscene [--size WIDTHxHEIGHT] [--frames COUNT] SCENE\n"
    "SCENE is one of\n"
    "  qr PAYLOAD...  cards with QR codes\n"
    "  pen            a pen of light over a desk\n"
    "  edges          a desk whose edges come and go\n"
    "WIDTH is a multiple of 8 and HEIGHT even. "
    "Writes COUNT I420 frames (default: 90 of 1280x720, meant for 30 a second) to standard "
    "output.\n";

struct Options {
  int width = 1280;
  int height = 720;
  int frames = 90;
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
