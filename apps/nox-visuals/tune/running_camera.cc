#include "nox-visuals/tune/running_camera.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include <string>
#include <utility>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/stream/pipeline.h"
#include "nox-visuals/stream/signals.h"
#include "video/nox_video_gst.h"

namespace nox::app {
namespace {

constexpr GstClockTime kLook = 100 * GST_MSECOND;
constexpr gint64 kPatienceUs = 10'000'000;

class RunningCamera final : public CameraPictures {
 public:
  explicit RunningCamera(const Source &source)
      : place_(source.place),
        signals_([] {}),
        pipeline_(make_pipeline(source, "appsink name=taken sync=false max-buffers=2 drop=true")),
        sink_(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "taken")),
        bus_(gst_element_get_bus(pipeline_.get())) {
    gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  }

  ~RunningCamera() override {
    drop_picture();
    gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  }

  CameraPicture next() override {
    drop_picture();
    const gint64 start = g_get_monotonic_time();
    do {
      sample_ = gst_app_sink_try_pull_sample(GST_APP_SINK(sink_.get()), kLook);
      demand_go_on();
      if (g_get_monotonic_time() - start > kPatienceUs) {
        throw StreamError(place_ + ": no picture came for 10 s; another program may hold it");
      }
    } while (sample_ == nullptr);
    return map_picture();
  }

 private:
  void drop_picture() {
    if (std::exchange(mapped_, false)) gst_video_frame_unmap(&mapped_frame_);
    if (sample_ != nullptr) gst_sample_unref(std::exchange(sample_, nullptr));
  }

  void demand_go_on() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
    if (stopped_by_signal()) throw StreamError("interrupted");
    const GstPointer<GstMessage> failure(
        gst_bus_pop_filtered(bus_.get(), static_cast<GstMessageType>(GST_MESSAGE_ERROR)));
    if (failure == nullptr) return;
    GError *error = nullptr;
    gst_message_parse_error(failure.get(), &error, nullptr);
    throw StreamError(place_ + ": " + take_error(error));
  }

  CameraPicture map_picture() {
    GstVideoInfo video;
    if (gst_video_info_from_caps(&video, gst_sample_get_caps(sample_)) == FALSE ||
        gst_video_frame_map(&mapped_frame_, &video, gst_sample_get_buffer(sample_), GST_MAP_READ) ==
            FALSE) {
      throw StreamError(place_ + ": a picture could not be read");
    }
    mapped_ = true;
    nox_video_frame_from_gst_video_frame(&frame_, &mapped_frame_);
    return {&frame_, static_cast<double>(g_get_monotonic_time()) / 1e6};
  }

  std::string place_;
  SignalWatch signals_;
  GstPointer<GstElement> pipeline_;
  GstPointer<GstElement> sink_;
  GstPointer<GstBus> bus_;
  GstSample *sample_ = nullptr;
  bool mapped_ = false;
  GstVideoFrame mapped_frame_{};
  NoxVideoFrame frame_{};
};

}  // namespace

std::unique_ptr<CameraPictures> run_camera(const Source &source) {
  auto camera = std::make_unique<RunningCamera>(source);
  camera->next();
  return camera;
}

}  // namespace nox::app
