#include "nox-visuals/scenes/clip.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/video/video.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "nox-visuals/demo/clip.h"
#include "nox-visuals/gst_pointers.h"

namespace nox::scenes {
namespace {

using app::GstPointer;
using app::demo::parse_pipeline;
using app::demo::run_to_end;
using app::demo::set_location;

GstPointer<GstElement> named(GstElement *pipeline, const char *name) {
  return GstPointer<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline), name));
}

void append_sample(GstSample *sample, Clip *clip) {
  GstVideoInfo info;
  GstVideoFrame mapped;
  gst_video_info_from_caps(&info, gst_sample_get_caps(sample));
  if (gst_video_frame_map(&mapped, &info, gst_sample_get_buffer(sample), GST_MAP_READ) == FALSE) {
    throw std::runtime_error("a frame cannot be read");
  }
  clip->append();
  const NoxVideoFrame frame = clip->frame(clip->frames() - 1);
  for (int plane = 0; plane < 3; ++plane) {
    const auto *from =
        static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&mapped, plane));
    for (int y = 0; y < frame.plane_heights[plane]; ++y) {
      std::memcpy(
          frame.planes[plane] + static_cast<std::ptrdiff_t>(y) * frame.strides[plane],
          from + static_cast<std::ptrdiff_t>(y) * GST_VIDEO_FRAME_PLANE_STRIDE(&mapped, plane),
          static_cast<std::size_t>(frame.plane_widths[plane]));
    }
  }
  gst_video_frame_unmap(&mapped);
}

std::string encoder(Codec codec, int kbits) {
  if (codec == Codec::kH264) {
    return "x264enc speed-preset=veryfast key-int-max=60 bitrate=" + std::to_string(kbits) +
           " ! h264parse ! matroskamux";
  }
  return "vp8enc deadline=1 cpu-used=8 keyframe-max-dist=60 target-bitrate=" +
         std::to_string(kbits) + "000 ! webmmux";
}

}  // namespace

NoxVideoFrame Clip::frame(std::size_t index) {
  NoxVideoFrame frame{};
  frame.format = kNoxFormatI420;
  frame.width = width_;
  frame.height = height_;
  frame.n_planes = 3;
  std::uint8_t *plane = samples_.data() + index * frame_bytes();
  for (int p = 0; p < 3; ++p) {
    frame.planes[p] = plane;
    frame.strides[p] = frame.plane_widths[p] = p == 0 ? width_ : width_ / 2;
    frame.plane_heights[p] = p == 0 ? height_ : height_ / 2;
    plane += static_cast<std::ptrdiff_t>(frame.strides[p]) * frame.plane_heights[p];
  }
  return frame;
}

Clip read_clip(const std::string &path, std::size_t most) {
  const auto pipeline = parse_pipeline(
      "filesrc name=file ! decodebin ! videoconvert ! "
      "video/x-raw,format=I420 ! appsink name=frames sync=false");
  set_location(pipeline.get(), "file", path);
  const auto sink = named(pipeline.get(), "frames");
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  Clip clip(0, 0);
  for (std::size_t i = 0; i < most; ++i) {
    GstSample *sample = gst_app_sink_pull_sample(GST_APP_SINK(sink.get()));
    if (sample == nullptr) break;
    if (i == 0) {
      GstVideoInfo info;
      gst_video_info_from_caps(&info, gst_sample_get_caps(sample));
      clip = Clip(GST_VIDEO_INFO_WIDTH(&info), GST_VIDEO_INFO_HEIGHT(&info));
    }
    append_sample(sample, &clip);
    gst_sample_unref(sample);
  }
  gst_element_set_state(pipeline.get(), GST_STATE_NULL);
  if (clip.width() == 0) throw std::runtime_error(path + ": there is no video in it");
  return clip;
}

void write_clip(const std::string &path, Codec codec, int kbits, int width, int height,
                std::uint32_t frames,
                const std::function<void(std::uint32_t index, NoxVideoFrame *frame)> &draw) {
  const auto pipeline = parse_pipeline(
      "appsrc name=frames format=time block=true max-bytes=20000000 "
      "caps=video/x-raw,format=I420,framerate=30/1,width=" +
      std::to_string(width) + ",height=" + std::to_string(height) + " ! queue ! " +
      encoder(codec, kbits) + " ! filesink name=file");
  const std::string unfinished = path + ".part";
  set_location(pipeline.get(), "file", unfinished);
  const auto source = named(pipeline.get(), "frames");
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  for (std::uint32_t i = 0; i < frames; ++i) {
    Clip one(width, height);
    one.append();
    NoxVideoFrame frame = one.frame(0);
    draw(i, &frame);
    GstBuffer *buffer = gst_buffer_new_memdup(frame.planes[0], one.frame_bytes());
    GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(i, GST_SECOND, 30);
    GST_BUFFER_DURATION(buffer) = GST_SECOND / 30;
    gst_app_src_push_buffer(GST_APP_SRC(source.get()), buffer);
  }
  gst_app_src_end_of_stream(GST_APP_SRC(source.get()));
  run_to_end(pipeline.get());
  std::filesystem::rename(unfinished, path);
}

}  // namespace nox::scenes
