#include "nox-visuals/stream/mask_file.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/video/video.h>

#include <cstddef>
#include <filesystem>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

constexpr std::uint8_t kWhite = 255;
constexpr std::uint8_t kHalf = 128;
constexpr GstClockTime kPatience = 20 * GST_SECOND;

GstPointer<GstElement> parse(const std::string &description) {
  GError *error = nullptr;
  GstElement *parsed =
      gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error);
  if (parsed == nullptr) throw StreamError(take_error(error));
  return GstPointer<GstElement>(GST_ELEMENT(gst_object_ref_sink(parsed)));
}

GstPointer<GstElement> named(GstElement *pipeline, const char *name) {
  return GstPointer<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline), name));
}

// A pipeline, stopped however it is left.
class Running {
 public:
  explicit Running(GstElement *pipeline) : pipeline_(pipeline) {
    gst_element_set_state(pipeline_, GST_STATE_PLAYING);
  }
  ~Running() { gst_element_set_state(pipeline_, GST_STATE_NULL); }
  Running(const Running &) = delete;
  Running &operator=(const Running &) = delete;

 private:
  GstElement *pipeline_;
};

PictureMask mask_of(GstSample *sample) {
  GstVideoInfo info;
  GstVideoFrame frame;
  if (gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) == FALSE ||
      gst_video_frame_map(&frame, &info, gst_sample_get_buffer(sample), GST_MAP_READ) == FALSE) {
    return {};
  }
  PictureMask mask(GST_VIDEO_INFO_WIDTH(&info), GST_VIDEO_INFO_HEIGHT(&info));
  const auto *row = static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
  for (int y = 0; y < mask.height(); ++y, row += GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0)) {
    for (int x = 0; x < mask.width(); ++x) {
      if (row[x] < kHalf) mask.hide(x, y);
    }
  }
  gst_video_frame_unmap(&frame);
  return mask;
}

GstBuffer *gray_buffer(const PictureMask &mask) {
  const auto stride = static_cast<std::size_t>(GST_ROUND_UP_4(mask.width()));
  const std::size_t bytes = stride * static_cast<std::size_t>(mask.height());
  auto *samples = static_cast<std::uint8_t *>(g_malloc0(bytes));
  for (int y = 0; y < mask.height(); ++y) {
    for (int x = 0; x < mask.width(); ++x) {
      if (!mask.hidden(x, y)) {
        samples[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x)] = kWhite;
      }
    }
  }
  return gst_buffer_new_wrapped(samples, bytes);
}

}  // namespace

PictureMask read_mask(const std::string &path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw UsageError("--mask " + path + ": there is no such file");
  }
  const auto pipeline = parse(
      "filesrc name=file ! decodebin ! videoconvert ! "
      "video/x-raw,format=GRAY8 ! appsink name=picture sync=false");
  g_object_set(named(pipeline.get(), "file").get(), "location", path.c_str(), nullptr);
  const auto sink = named(pipeline.get(), "picture");
  const Running running(pipeline.get());
  GstSample *sample = gst_app_sink_try_pull_sample(GST_APP_SINK(sink.get()), kPatience);
  if (sample == nullptr) throw UsageError("--mask " + path + ": is no picture that can be read");
  PictureMask mask = mask_of(sample);
  gst_sample_unref(sample);
  return mask;
}

bool write_mask(const PictureMask &mask, int descriptor) {
  const auto pipeline = parse("appsrc name=mask ! pngenc snapshot=true ! fdsink name=file");
  g_object_set(named(pipeline.get(), "file").get(), "fd", descriptor, nullptr);
  const auto source = named(pipeline.get(), "mask");
  const GstPointer<GstCaps> caps(gst_caps_new_simple(
      "video/x-raw", "format", G_TYPE_STRING, "GRAY8", "width", G_TYPE_INT, mask.width(), "height",
      G_TYPE_INT, mask.height(), "framerate", GST_TYPE_FRACTION, 0, 1, nullptr));
  gst_app_src_set_caps(GST_APP_SRC(source.get()), caps.get());
  const GstPointer<GstBus> bus(gst_element_get_bus(pipeline.get()));
  const Running running(pipeline.get());
  gst_app_src_push_buffer(GST_APP_SRC(source.get()), gray_buffer(mask));
  gst_app_src_end_of_stream(GST_APP_SRC(source.get()));
  const GstPointer<GstMessage> end(gst_bus_timed_pop_filtered(
      bus.get(), kPatience, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
  return end != nullptr && GST_MESSAGE_TYPE(end.get()) == GST_MESSAGE_EOS;
}

}  // namespace nox::app
