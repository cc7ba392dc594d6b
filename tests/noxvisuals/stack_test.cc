// The stack that a streaming thread needs for each element. docs/reliability.md tells hosts.
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "noxvisuals/every_element.h"
#include "support/pad_line.h"
#include "support/painted_stack.h"
#include "support/qr_picture.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

constexpr std::size_t kKiB = 1024;

bool stack_can_be_measured() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return false;
#else
  return !quick();
#endif
}

using Frames = std::vector<GstBuffer *>;

GstBuffer *new_noise(const GstVideoInfo &info, std::uint64_t seed) {
  GstBuffer *buffer = new_video_buffer(info);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_WRITE);
  Random(seed).fill(map.data, map.size);
  gst_buffer_unmap(buffer, &map);
  return buffer;
}

// A picture that the decoder floods as deep as it floods anything: what looks like a finder pattern
// in every row is a bundle of stripes, each a row deeper from row to row.
GstBuffer *new_stripes(const GstVideoInfo &info) {
  constexpr int kBar = 6;
  constexpr std::uint8_t kRow[] = {255, 0, 255, 0, 0, 0, 255, 0, 255};
  GstBuffer *buffer = new_video_buffer(info);
  GstVideoFrame frame;
  gst_video_frame_map(&frame, &info, buffer, GST_MAP_WRITE);
  for (int y = 0; y < info.height; ++y) {
    auto *row = static_cast<std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)) +
                static_cast<std::ptrdiff_t>(y) * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    for (int x = 0; x < info.width; ++x) row[x] = x / kBar < 9 ? kRow[x / kBar] : 255;
  }
  gst_video_frame_unmap(&frame);
  return buffer;
}

GstBuffer *new_codes(const GstVideoInfo &info) {
  GstBuffer *buffer = new_video_buffer(info);
  write_picture(buffer, info, QrPicture(info.width, info.height, {"one", "two"}).frame());
  return buffer;
}

// The stack that a thread uses which pushes the frames into a new element.
std::size_t stack_of(const char *name, const GstVideoInfo &info, const Frames &frames) {
  PaintedStack stack(8192 * kKiB);
  const ObjectPtr<GstElement> element = new_element(name);
  gst_element_set_state(element.get(), GST_STATE_PLAYING);
  {
    PadLine line(element.get(), info);
    EXPECT_TRUE(stack.run([&] {
      for (GstBuffer *frame : frames) EXPECT_EQ(line.push(frame), GST_FLOW_OK);
    }));
    EXPECT_EQ(line.received(), static_cast<int>(frames.size()));
  }
  gst_element_set_state(element.get(), GST_STATE_NULL);
  return stack.used();
}

// Half of what the page tells hosts at most, so that other compilers have room as well.
void expect_within(std::size_t used, std::size_t told, const char *what) {
  EXPECT_LE(used, told / 2) << what;
  testing::Test::RecordProperty(what, std::to_string(used));
  if (std::getenv("NOX_TEST_IN_FULL") != nullptr) std::printf("%s: %zu bytes\n", what, used);
}

TEST(Stack, ThatTheFloodOfTheDecoderTakes) {
  if (!stack_can_be_measured()) GTEST_SKIP() << "frames of another size under this checker";
  const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_I420, 64, 5000);
  const std::size_t used = stack_of("noxqrdec", info, {new_stripes(info)});
  EXPECT_GT(used, 4096U * 32) << "the picture does not flood to the decoder's depth";
  expect_within(used, 1024 * kKiB, "noxqrdec, the deepest flood");
}

TEST(Stack, ThatReadingACodeTakes) {
  if (!stack_can_be_measured()) GTEST_SKIP() << "frames of another size under this checker";
  const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_I420, 640, 240);
  expect_within(stack_of("noxqrdec", info, {new_codes(info), new_noise(info, 1)}), 1024 * kKiB,
                "noxqrdec, codes and noise");
}

TEST(Stack, ThatTheOthersTake) {
  if (!stack_can_be_measured()) GTEST_SKIP() << "frames of another size under this checker";
  for (const char *name : {"noxpentracker", "noxvectorizer"}) {
    for (const auto &[width, height] : {std::pair{64, 36}, {1280, 720}, {897, 505}, {448, 252}}) {
      const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_I420, width, height);
      GstBuffer *pen = new_video_buffer(info);
      draw_pen(pen, info, Pen{0.5, 0.5, false});
      expect_within(stack_of(name, info, {pen, new_noise(info, 1), new_noise(info, 2)}), 64 * kKiB,
                    (std::string(name) + ", " + std::to_string(width)).c_str());
    }
  }
}

}  // namespace
}  // namespace nox::test
