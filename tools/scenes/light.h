// Linear light: what a canvas holds for scenes in which lights add up, and how a camera codes it.
#ifndef SCENES_LIGHT_H_
#define SCENES_LIGHT_H_

#include <cstdint>

#include "scenes/canvas.h"
#include "video/nox_video_frame.h"

namespace nox::scenes {

// In a canvas of light, colours are linear, and 1 is what saturates the sensor; lights may go far
// beyond.

// How samples are coded: 16 to 235 as most files, or 0 to 255 as most webcams. BT.601.
enum class Range { kStudio, kFull };

// Part of a picture, its borders even.
struct Area {
  int left, top, right, bottom;  // up to, but without, right and bottom
};

Area whole(const NoxVideoFrame &frame);

// The area of this size around a stroke with `reach` to every side, within a picture.
Area around(Point from, Point to, float reach, int width, int height);

// The light that the samples of an area stand for, and back: what is above 1 is cut off, each
// channel by itself, as a sensor does. `light` has the size of the area.
Canvas read_light(const NoxVideoFrame &frame, const Area &area, Range range);
void write_light(const Canvas &light, const Area &area, Range range, NoxVideoFrame *frame);

// As if the shutter had been open for another time: all light of the picture times `factor`.
void expose(NoxVideoFrame *frame, float factor, Range range);

// As a camera that is set to more saturation: chroma is `factor` times as far from grey.
void strengthen_colours(NoxVideoFrame *frame, float factor);

// The sensor's noise, `sigma` steps of luma and half as many of chroma.
void add_sensor_noise(NoxVideoFrame *frame, const NoiseField &noise, std::uint32_t index,
                      float sigma);

}  // namespace nox::scenes

#endif  // SCENES_LIGHT_H_
