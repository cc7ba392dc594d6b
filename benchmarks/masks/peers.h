// The same pictures for the libraries that are measured beside our own code.
#ifndef MASKS_PEERS_H_
#define MASKS_PEERS_H_

#include <algorithm>
#include <cstdint>
#include <memory>

#include "masks/morphology_plain.h"
#include "masks/pictures.h"

#ifdef NOX_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef NOX_HAVE_LEPTONICA
#include <leptonica/allheaders.h>
#endif

namespace nox::bench {

#ifdef NOX_HAVE_OPENCV
// The picture in 8 bits; with `binary`, 255 where the mask has a 1.
inline cv::Mat make_mat(const Picture &picture, bool binary) {
  cv::setNumThreads(1);
  cv::Mat mat(picture.height, picture.width, CV_8UC1);
  for (std::int32_t y = 0; y < picture.height; ++y) {
    for (std::int32_t x = 0; x < picture.width; ++x) {
      const std::uint8_t sample = picture.at(x, y);
      mat.at<std::uint8_t>(y, x) =
          static_cast<std::uint8_t>(binary ? (sample > kLimit ? 255 : 0) : sample);
    }
  }
  return mat;
}

inline cv::Mat make_kernel(const test::Shape &shape) {
  cv::Mat kernel(shape.height, shape.width, CV_8UC1);
  std::copy(shape.members.begin(), shape.members.end(), kernel.begin<std::uint8_t>());
  return kernel;
}
#endif

#ifdef NOX_HAVE_LEPTONICA
struct PixDeleter {
  void operator()(PIX *pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<PIX, PixDeleter>;

inline PixPtr make_pix(const Picture &picture, bool binary) {
  PixPtr pix(pixCreate(picture.width, picture.height, binary ? 1 : 8));
  for (std::int32_t y = 0; y < picture.height; ++y) {
    for (std::int32_t x = 0; x < picture.width; ++x) {
      const std::uint8_t sample = picture.at(x, y);
      pixSetPixel(pix.get(), x, y, binary ? (sample > kLimit ? 1 : 0) : sample);
    }
  }
  return pix;
}

struct SelDeleter {
  void operator()(SEL *sel) const { selDestroy(&sel); }
};
using SelPtr = std::unique_ptr<SEL, SelDeleter>;

inline SelPtr make_sel(const test::Shape &shape) {
  SelPtr sel(selCreate(shape.height, shape.width, nullptr));
  selSetOrigin(sel.get(), shape.height / 2, shape.width / 2);
  for (std::int32_t r = 0; r < shape.height; ++r) {
    for (std::int32_t c = 0; c < shape.width; ++c) {
      const bool member = shape.members[static_cast<std::size_t>(r * shape.width + c)] != 0;
      selSetElement(sel.get(), r, c, member ? SEL_HIT : SEL_DONT_CARE);
    }
  }
  return sel;
}
#endif

}  // namespace nox::bench

#endif  // MASKS_PEERS_H_
