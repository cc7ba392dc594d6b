// Pictures with QR codes for the tests of those who read them.
#ifndef SUPPORT_QR_PICTURE_H_
#define SUPPORT_QR_PICTURE_H_

#include <algorithm>
#include <string>
#include <vector>

#include "scenes/canvas.h"
#include "scenes/qr_code.h"
#include "video/nox_video_frame.h"

namespace nox::test {

// Sharp upright codes side by side, without a camera's noise, as I420 of an even size: what the
// tests ask is whether the picture reaches the decoder, not how well the decoder reads.
class QrPicture {
 public:
  QrPicture(int width, int height, const std::vector<std::string> &payloads) {
    constexpr int kModulesAtMost = 33 + 8;  // version 4 with its quiet zones
    const int cell = width / static_cast<int>(payloads.size());
    const auto module = static_cast<float>(std::min(cell, height) / kModulesAtMost);
    scenes::Canvas canvas(width, height);
    canvas.fill({128, 128, 128});
    for (std::size_t i = 0; i < payloads.size(); ++i) {
      const float x = static_cast<float>(cell) * (static_cast<float>(i) + 0.5F);
      scenes::draw_qr_code(&canvas, scenes::QrCode(payloads[i]),
                           {x, static_cast<float>(height) / 2.0F}, module, 0.0F);
    }
    nox_video_frame_alloc(&frame_, kNoxFormatI420, width, height);
    canvas.write(&frame_);
  }
  ~QrPicture() { nox_video_frame_free_planes(&frame_); }
  QrPicture(const QrPicture &) = delete;
  QrPicture &operator=(const QrPicture &) = delete;

  const NoxVideoFrame &frame() const { return frame_; }

 private:
  NoxVideoFrame frame_{};
};

}  // namespace nox::test

#endif  // SUPPORT_QR_PICTURE_H_
