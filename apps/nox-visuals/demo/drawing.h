// A video beside what noxvectorizer makes of it, frame by frame.
#ifndef NOX_VISUALS_DEMO_DRAWING_H_
#define NOX_VISUALS_DEMO_DRAWING_H_

#include <gst/gst.h>
#include <gst/video/video.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "scenes/canvas.h"

namespace nox::app::demo {

struct SampleDeleter {
  void operator()(GstSample *sample) const { gst_sample_unref(sample); }
};
using SamplePtr = std::unique_ptr<GstSample, SampleDeleter>;

// A sample's picture, mapped for reading while this lives.
class Picture {
 public:
  explicit Picture(GstSample *sample) {
    gst_video_info_from_caps(&info_, gst_sample_get_caps(sample));
    if (gst_video_frame_map(&frame_, &info_, gst_sample_get_buffer(sample), GST_MAP_READ) ==
        FALSE) {
      throw StreamError("a frame cannot be read");
    }
  }
  ~Picture() { gst_video_frame_unmap(&frame_); }
  Picture(const Picture &) = delete;
  Picture &operator=(const Picture &) = delete;

  int width() const { return GST_VIDEO_FRAME_WIDTH(&frame_); }
  int height() const { return GST_VIDEO_FRAME_HEIGHT(&frame_); }
  int luma(int x, int y) const { return sample(0, x, y); }

  // The colour of a pixel, from BT.601 studio range.
  scenes::Color color(int x, int y) const {
    const auto luminance = 1.164F * static_cast<float>(luma(x, y) - 16);
    const auto u = static_cast<float>(sample(1, x / 2, y / 2) - 128);
    const auto v = static_cast<float>(sample(2, x / 2, y / 2) - 128);
    return {luminance + 1.596F * v, luminance - 0.392F * u - 0.813F * v, luminance + 2.017F * u};
  }

 private:
  int sample(int plane, int x, int y) const {
    const auto *data =
        static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame_, plane));
    return data[y * GST_VIDEO_FRAME_PLANE_STRIDE(&frame_, plane) + x];
  }

  GstVideoInfo info_{};
  GstVideoFrame frame_{};
};

// The input and the drawing of each frame in turn.
class Player {
 public:
  // Plays what the bin brings by its pad "src", which it takes. Throws StreamError.
  explicit Player(GstElement *source);
  ~Player() { gst_element_set_state(pipeline_.get(), GST_STATE_NULL); }
  Player(const Player &) = delete;
  Player &operator=(const Player &) = delete;

  // False behind the last frame.
  bool next();
  GstSample *input() const { return input_sample_.get(); }
  GstSample *drawing() const { return drawing_sample_.get(); }

 private:
  GstPointer<GstElement> pipeline_;
  GstPointer<GstElement> input_;
  GstPointer<GstElement> drawing_;
  SamplePtr input_sample_;
  SamplePtr drawing_sample_;
};

// The first frame of a video. Throws StreamError.
scenes::Canvas first_frame(const std::string &clip);

// Input and drawing side by side.
scenes::Canvas make_row(const Picture &input, const Picture &drawing);

// Rows of one width, one below the other; there is at least one.
scenes::Canvas stack(const std::vector<scenes::Canvas> &rows);

}  // namespace nox::app::demo

#endif  // NOX_VISUALS_DEMO_DRAWING_H_
