// Every element at 8192 by 8192, for as many frames as it remembers. What it takes is printed;
// docs/reliability.md tells hosts.
#include <gst/gst.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "noxvisuals/every_element.h"
#include "support/log_capture.h"
#include "support/pad_line.h"
#include "support/peak_memory.h"
#include "support/qr_picture.h"
#include "support/random.h"

namespace nox::test {
namespace {

constexpr int kSide = 8192;
constexpr double kMiB = 1024.0 * 1024.0;
constexpr double kMemoryNeeded = 16 * 1024 * kMiB;

double memory_of_the_machine() {
  return static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double cpu_seconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

GstBuffer *new_noise(const GstVideoInfo &info, std::uint64_t seed) {
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, info.size, nullptr);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_WRITE);
  Random random(seed);
  for (gsize i = 0; i + 8 <= map.size; i += 8) {
    const std::uint64_t bits = random.bits();
    std::memcpy(map.data + i, &bits, 8);
  }
  gst_buffer_unmap(buffer, &map);
  return buffer;
}

class HugeFrames : public testing::Test {
 protected:
  void SetUp() override {
    if (std::getenv("NOX_TEST_IN_FULL") == nullptr) GTEST_SKIP() << "runs in tools/check --huge";
    // The kernel keeps some of the memory that a machine is sold with.
    if (memory_of_the_machine() < 0.95 * kMemoryNeeded) GTEST_SKIP() << "needs 16 GB of memory";
  }

  // Pushes frames that alternate between the given ones.
  void push(const char *name, int count, const std::vector<BufferPtr> &frames) {
    const ObjectPtr<GstElement> element = new_element(name);
    gst_element_set_state(element.get(), GST_STATE_PLAYING);
    forget_peak_memory();
    const std::size_t before = peak_memory();
    double seconds = 0;
    {
      PadLine line(element.get(), info_);
      for (int i = 0; i < count; ++i) {
        const std::size_t which = static_cast<std::size_t>(i) % frames.size();
        const double start = cpu_seconds();
        ASSERT_EQ(line.push(gst_buffer_ref(frames[which].get())), GST_FLOW_OK);
        seconds += cpu_seconds() - start;
      }
      EXPECT_EQ(line.received(), count);
    }
    held_ = static_cast<double>(peak_memory() - before) / kMiB;
    gst_element_set_state(element.get(), GST_STATE_NULL);
    std::printf("%s: %d frames, %.0f ms of CPU time each, %.0f MiB beside the input\n", name, count,
                1000 * seconds / count, held_);
  }

  const GstVideoInfo info_ = video_info(GST_VIDEO_FORMAT_I420, kSide, kSide);
  double held_ = 0;  // MiB
};

// A copy of the frame, and 16 bits of memory for each pixel.
TEST_F(HugeFrames, NoxVectorizerWithBothRingsFull) {
  std::vector<BufferPtr> frames;
  for (std::uint64_t seed : {1, 2}) frames.emplace_back(new_noise(info_, seed));
  push("noxvectorizer", 520, frames);
  EXPECT_LT(held_, 300);
}

TEST_F(HugeFrames, NoxPenTrackerWithItsRingFull) {
  std::vector<BufferPtr> frames;
  for (std::uint64_t seed : {1, 2, 3}) frames.emplace_back(new_noise(info_, seed));
  push("noxpentracker", 30, frames);
  EXPECT_LT(held_, 50);
}

// A copy of the frame, which is shared here, and six bytes for each pixel: the decoder has its own
// picture in two forms, of one and two bytes, and makes them anew beside the old for every frame.
TEST_F(HugeFrames, NoxQrDecReadsACode) {
  const QrPicture picture(420, 420, {"in a corner"});
  std::vector<BufferPtr> frames;
  frames.emplace_back(gst_buffer_new_allocate(nullptr, info_.size, nullptr));
  // Dark around the code: the decoder adds up all samples in 32 bits, too few for a bright picture
  // of this size.
  gst_buffer_memset(frames[0].get(), 0, 16, info_.size);
  GstMapInfo map;
  gst_buffer_map(frames[0].get(), &map, GST_MAP_WRITE);
  for (int y = 0; y < 420; ++y) {
    std::memcpy(
        map.data + static_cast<std::ptrdiff_t>(y) * kSide,
        picture.frame().planes[0] + static_cast<std::ptrdiff_t>(y) * picture.frame().strides[0],
        420);
  }
  gst_buffer_unmap(frames[0].get(), &map);
  const LogCapture log("noxqrdec", GST_LEVEL_INFO);
  push("noxqrdec", 3, frames);
  EXPECT_EQ(log.messages(), std::vector<std::string>(3, "Got QR Payload: in a corner"));
  EXPECT_LT(held_, 600);
}

TEST_F(HugeFrames, NoxQrDecOnNoise) {
  std::vector<BufferPtr> frames;
  for (std::uint64_t seed : {1, 2}) frames.emplace_back(new_noise(info_, seed));
  push("noxqrdec", 4, frames);
  EXPECT_LT(held_, 600);
}

}  // namespace
}  // namespace nox::test
