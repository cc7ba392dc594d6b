#include "noxvisuals/soak_frames.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "noxvisuals/pen_buffer.h"
#include "support/qr_sample.h"
#include "support/video_buffer.h"

namespace nox::test {

namespace {

constexpr int kLargest = 72;
constexpr int kQrModule = 2;

// Noise to copy from: a stream of random numbers would take most of the time.
const std::vector<std::uint8_t> &noise() {
  static const std::vector<std::uint8_t> bytes = [] {
    std::vector<std::uint8_t> pool(1 << 18);
    Random(2027).fill(pool.data(), pool.size());
    return pool;
  }();
  return bytes;
}

const std::uint8_t *some_noise(std::size_t size, Random *random) {
  return noise().data() + random->between(0, static_cast<std::int32_t>(noise().size() - size));
}

}  // namespace

SoakScene::SoakScene(GstVideoFormat format, int width, int height, BufferLayout layout)
    : info_(video_info(format, width, height)), layout_(layout), edge_(width / 2) {}

SoakScene::SoakScene(GstVideoFormat format, Random *random)
    : SoakScene(format, random->between(1, kLargest), random->between(1, kLargest),
                static_cast<BufferLayout>(random->between(0, 2))) {
  padding_ = random->between(1, 70);
}

SoakScene SoakScene::at_rest() {
  return {GST_VIDEO_FORMAT_I420, 32, 32, BufferLayout::kPlain};
}

GstBuffer *SoakScene::new_buffer(Random *random) const {
  const bool plain = layout_ == BufferLayout::kPlain;
  GstBuffer *buffer = plain ? new_video_buffer(info_) : new_padded_buffer(info_, padding_);
  const gsize size = gst_buffer_get_size(buffer);
  gst_buffer_fill(buffer, 0, some_noise(size, random), size);
  if (layout_ == BufferLayout::kShort) {
    const gint last = static_cast<gint>(GST_VIDEO_INFO_N_PLANES(&info_)) - 1;
    const GstVideoMeta *meta = gst_buffer_get_video_meta(buffer);
    const gint unused = meta->stride[last] - GST_VIDEO_INFO_COMP_WIDTH(&info_, last);
    gst_buffer_set_size(buffer, static_cast<gssize>(size) - unused);
  }
  return buffer;
}

void SoakScene::draw(NoxVideoFrame *frame, Random *random) const {
  for (int p = 0; p < 3; ++p) {
    for (int y = 0; y < frame->plane_heights[p]; ++y) {
      std::uint8_t *row = frame->planes[p] + static_cast<std::ptrdiff_t>(y) * frame->strides[p];
      for (int x = 0; x < frame->plane_widths[p]; ++x) {
        const int base = p != 0 ? 100 : x < edge_ ? 30 : 200;
        row[x] = static_cast<std::uint8_t>(base + row[x] / (p != 0 ? 4 : 64));
      }
    }
  }
  if (random->chance(0.02)) draw_qr_sample(frame, 0, 0, kQrModule);
}

GstBuffer *SoakScene::next_frame(Random *random) const {
  GstBuffer *buffer = new_buffer(random);
  if (random->chance(0.1)) {
    draw_pen(buffer, info_, Pen{0.5, 0.5, random->chance(0.5)});
    return buffer;
  }
  GstVideoFrame mapped;
  gst_video_frame_map(&mapped, &info_, buffer, GST_MAP_WRITE);
  NoxVideoFrame frame;
  nox_video_frame_from_gst_video_frame(&frame, &mapped);
  draw(&frame, random);
  gst_video_frame_unmap(&mapped);
  return buffer;
}

}  // namespace nox::test
