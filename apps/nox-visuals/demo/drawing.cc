#include "nox-visuals/demo/drawing.h"

#include <gst/app/gstappsink.h>

#include "nox-visuals/demo/clip.h"

namespace nox::app::demo {

using scenes::Canvas;

namespace {

// The queues hold a frame or two each: both branches are read in step.
constexpr const char *kBoth =
    "videoconvert name=first ! video/x-raw,format=I420 ! tee name=t"
    " t. ! queue ! appsink name=input sync=false max-buffers=2"
    " t. ! queue ! noxvectorizer ! appsink name=drawing sync=false max-buffers=2";

void copy(const Picture &picture, int left, Canvas *canvas) {
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) canvas->mix(left + x, y, picture.color(x, y), 1.0F);
  }
}

}  // namespace

Player::Player(GstElement *source) : pipeline_(parse_pipeline_behind(source, kBoth, "first")) {
  input_.reset(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "input"));
  drawing_.reset(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "drawing"));
  gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
}

bool Player::next() {
  SamplePtr input(gst_app_sink_pull_sample(GST_APP_SINK(input_.get())));
  SamplePtr drawing(gst_app_sink_pull_sample(GST_APP_SINK(drawing_.get())));
  if (input == nullptr || drawing == nullptr) return false;
  input_sample_ = std::move(input);
  drawing_sample_ = std::move(drawing);
  return true;
}

Canvas first_frame(const std::string &clip) {
  const auto pipeline = parse_pipeline(
      "filesrc name=clip ! decodebin ! videoconvert ! video/x-raw,format=I420 ! "
      "appsink name=frame sync=false max-buffers=1");
  set_location(pipeline.get(), "clip", clip);
  const GstPointer<GstElement> sink(gst_bin_get_by_name(GST_BIN(pipeline.get()), "frame"));
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  const SamplePtr sample(gst_app_sink_pull_sample(GST_APP_SINK(sink.get())));
  gst_element_set_state(pipeline.get(), GST_STATE_NULL);
  if (sample == nullptr) throw StreamError(clip + ": no frame came");
  const Picture picture(sample.get());
  Canvas canvas(picture.width(), picture.height());
  copy(picture, 0, &canvas);
  return canvas;
}

Canvas make_row(const Picture &input, const Picture &drawing) {
  Canvas row(2 * input.width(), input.height());
  copy(input, 0, &row);
  copy(drawing, input.width(), &row);
  return row;
}

Canvas stack(const std::vector<Canvas> &rows) {
  int height = 0;
  for (const Canvas &row : rows) height += row.height();
  Canvas all(rows.front().width(), height);
  int top = 0;
  for (const Canvas &row : rows) {
    for (int y = 0; y < row.height(); ++y) {
      for (int x = 0; x < row.width(); ++x) {
        all.mix(x, top + y, row.pixel(x, y), 1.0F);
      }
    }
    top += row.height();
  }
  return all;
}

}  // namespace nox::app::demo
