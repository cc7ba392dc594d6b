// A picture to draw test scenes on, and the camera that looks at it.
#ifndef SCENES_CANVAS_H_
#define SCENES_CANVAS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "video/nox_video_frame.h"

namespace nox::scenes {

struct Color {
  float r, g, b;  // gamma-coded, 0 to 255
};

struct Point {
  float x, y;  // in pixels; pixel (i, j) covers i to i + 1 and j to j + 1
};

// Gaussian noise of unit variance, drawn once from a fixed seed and read from a different place for
// every row and frame, which is as good to a detector and far cheaper than drawing it anew.
class NoiseField {
 public:
  explicit NoiseField(std::uint32_t seed);
  // `count` samples that belong to this row of this frame; valid as long as the field.
  const float *row(std::uint32_t frame, std::uint32_t row, std::size_t count) const;

 private:
  std::vector<float> samples_;
};

class Canvas {
 public:
  Canvas(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }
  // Row by row from the top left.
  const std::vector<Color> &pixels() const { return pixels_; }
  const Color &pixel(int x, int y) const { return pixels_[index(x, y)]; }

  void fill(Color color);
  // Mixes `color` into pixel (x, y); coverage 0 leaves it, 1 replaces it. Outside is ignored.
  void mix(int x, int y, Color color, float coverage);
  // An upright rectangle, its borders antialiased.
  void rectangle(Point top_left, Point bottom_right, Color color);
  // A disc whose border fades over `softness` pixels (1 is plain antialiasing).
  void disc(Point centre, float radius, Color color, float softness = 1.0F);
  // A stroke from one point to another with round ends, `radius` to either side.
  void line(Point from, Point to, float radius, Color color);

  // What a camera does to the scene, in this order: an out-of-focus blur (standard deviation in
  // pixels), the exposure, and the sensor's noise (standard deviation in steps of 255).
  void blur(float sigma);
  void expose(float gain);
  void add_noise(const NoiseField &noise, std::uint32_t frame, float sigma);

  // Writes the picture into the planes of a 4:2:0 frame of the same size as BT.601 studio range; a
  // chroma sample is the mean of the pixels that it covers. An alpha plane is left alone.
  void write(NoxVideoFrame *frame) const;

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }
  Color &at(int x, int y) { return pixels_[index(x, y)]; }
  void stroke(Point from, Point to, float radius, Color color, float softness);
  void write_luma(NoxVideoFrame *frame) const;
  void write_chroma(NoxVideoFrame *frame) const;
  Color block_mean(int x, int y) const;

  int width_;
  int height_;
  std::vector<Color> pixels_;
};

}  // namespace nox::scenes

#endif  // SCENES_CANVAS_H_
