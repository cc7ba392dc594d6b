// Encoded clips of scenes, and their frames.
#ifndef BENCHMARKS_NOX_VISUALS_SCENES_CLIP_H_
#define BENCHMARKS_NOX_VISUALS_SCENES_CLIP_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "video/nox_video_frame.h"

namespace nox::scenes {

// Frames of I420, without padding. Sizes are even.
class Clip {
 public:
  Clip(int width, int height) : width_(width), height_(height) {}

  int width() const { return width_; }
  int height() const { return height_; }
  std::size_t frames() const { return samples_.size() / frame_bytes(); }

  // Adds a frame of zeros.
  void append() { samples_.resize(samples_.size() + frame_bytes()); }
  void append(const std::uint8_t *samples) {
    samples_.insert(samples_.end(), samples, samples + frame_bytes());
  }

  // Points into the clip.
  NoxVideoFrame frame(std::size_t index);

  std::size_t frame_bytes() const {
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) * 3 / 2;
  }

 private:
  int width_;
  int height_;
  std::vector<std::uint8_t> samples_;
};

enum class Codec { kH264, kVp8 };

// At most so many frames of a video. Throws std::runtime_error.
Clip read_clip(const std::string &path, std::size_t most);

// Encodes frames of which `draw` fills one after the other. Throws std::runtime_error.
void write_clip(const std::string &path, Codec codec, int kbits, int width, int height,
                std::uint32_t frames,
                const std::function<void(std::uint32_t index, NoxVideoFrame *frame)> &draw);

}  // namespace nox::scenes

#endif  // BENCHMARKS_NOX_VISUALS_SCENES_CLIP_H_
