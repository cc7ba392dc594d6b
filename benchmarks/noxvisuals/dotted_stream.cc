#include "noxvisuals/dotted_stream.h"

#include <gst/video/video.h>
#include <time.h>

#include "support/video_buffer.h"

namespace nox::bench {

namespace {

constexpr int kWorkWidth = 448;
constexpr int kWorkHeight = 252;

double thread_milliseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

GstBuffer *dotted_buffer(const test::DottedPicture &dots, int index, const GstVideoInfo &info) {
  GstBuffer *buffer = test::new_video_buffer(info);
  GstVideoFrame mapped;
  gst_video_frame_map(&mapped, &info, buffer, GST_MAP_WRITE);
  NoxVideoFrame frame;
  nox_video_frame_from_gst_video_frame(&frame, &mapped);
  test::draw_dots(dots, index, &frame);
  gst_video_frame_unmap(&mapped);
  return buffer;
}

}  // namespace

std::vector<double> time_dots(const test::DottedPicture &dots, int frames) {
  const int width = kWorkWidth * dots.scale;
  const int height = kWorkHeight * dots.scale;
  const GstVideoInfo info = test::video_info(GST_VIDEO_FORMAT_I420, width, height);
  const test::Harness harness = test::new_harness("noxpentracker");
  gst_harness_set_src_caps(harness.get(), gst_video_info_to_caps(&info));
  std::vector<double> times;
  for (int index = 0; index < frames; ++index) {
    GstBuffer *buffer = dotted_buffer(dots, index, info);
    const double start = thread_milliseconds();
    gst_harness_push(harness.get(), buffer);
    times.push_back(thread_milliseconds() - start);
    gst_buffer_unref(gst_harness_pull(harness.get()));
    while (GstEvent *event = gst_harness_try_pull_event(harness.get())) gst_event_unref(event);
  }
  return times;
}

}  // namespace nox::bench
