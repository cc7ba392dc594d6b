// What noxqrdec costs beside the decoder's own work: a frame pushed through the element, and the
// decoder called directly on the same luma plane. Both copy the plane into the decoder's image; the
// element also resizes the decoder for every frame, and carries the frame through GStreamer.
#include <benchmark/benchmark.h>
#include <gst/check/gstharness.h>
#include <gst/video/video.h>
#include <quirc.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "scenes/qr_scene.h"
#include "support/video_buffer.h"
#include "video/nox_video_frame.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

const NoxVideoFrame &scene() {
  static const NoxVideoFrame frame = [] {
    NoxVideoFrame made;
    nox_video_frame_alloc(&made, kNoxFormatI420, kWidth, kHeight);
    nox::scenes::QrScene(kWidth, kHeight, {"https://example.org/left", "right"}).render(0, &made);
    return made;
  }();
  return frame;
}

void decode_directly(benchmark::State &state) {
  const NoxVideoFrame &frame = scene();
  quirc *decoder = quirc_new();
  quirc_resize(decoder, kWidth, kHeight);
  for (auto _ : state) {
    std::uint8_t *image = quirc_begin(decoder, nullptr, nullptr);
    for (int y = 0; y < kHeight; ++y) {
      std::memcpy(image + static_cast<std::ptrdiff_t>(y) * kWidth,
                  frame.planes[0] + static_cast<std::ptrdiff_t>(y) * frame.strides[0], kWidth);
    }
    quirc_end(decoder);
    for (int i = 0; i < quirc_count(decoder); ++i) {
      quirc_code code;
      quirc_data data;
      quirc_extract(decoder, i, &code);
      benchmark::DoNotOptimize(quirc_decode(&code, &data));
    }
  }
  quirc_destroy(decoder);
}

void push_through_element(benchmark::State &state) {
  const GstVideoInfo info = nox::test::video_info(GST_VIDEO_FORMAT_I420, kWidth, kHeight);
  GstHarness *harness = gst_harness_new("noxqrdec");
  gst_harness_set_src_caps(harness, gst_video_info_to_caps(&info));
  GstBuffer *buffer = nox::test::new_video_buffer(info);
  nox::test::write_picture(buffer, info, scene());
  // The one buffer goes round: what comes out is pushed again.
  for (auto _ : state) buffer = gst_harness_push_and_pull(harness, buffer);
  gst_buffer_unref(buffer);
  gst_harness_teardown(harness);
}

}  // namespace

int main(int argc, char **argv) {
  gst_init(&argc, &argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RegisterBenchmark("qr_scene/1920x1080/nox", push_through_element);
  benchmark::RegisterBenchmark("qr_scene/1920x1080/quirc directly", decode_directly);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
