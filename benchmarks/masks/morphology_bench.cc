// Erosion and dilation as the pen tracker and the vectorizer use them, and by irregular shapes.
#include "masks/morphology.h"

#include <benchmark/benchmark.h>

#include <string>

#include "masks/mask_maker.h"
#include "masks/peers.h"
#include "masks/pictures.h"
#include "masks/shapes.h"
#include "masks/target_runs.h"

namespace nox::bench {
namespace {

void register_morph(const std::string &name, const Picture &picture, const test::Shape &shape,
                    int operation) {
  register_targets(name, [=](benchmark::State &state) {
    const test::MaskPtr src = make_mask(picture);
    const test::MaskPtr dst = make_mask(picture);
    const test::ElementPtr element = test::make_element(shape);
    for (auto _ : state) {
      bitmask_morph(dst.get(), src.get(), element.get(), operation);
      benchmark::ClobberMemory();
    }
  });
#ifdef NOX_HAVE_OPENCV
  benchmark::RegisterBenchmark((name + "/opencv").c_str(), [=](benchmark::State &state) {
    const cv::Mat src = make_mat(picture, true);
    const cv::Mat kernel = make_kernel(shape);
    cv::Mat dst = src.clone();
    for (auto _ : state) {
      if (operation == kBitmaskDilate) {
        cv::dilate(src, dst, kernel);
      } else {
        cv::erode(src, dst, kernel);
      }
    }
  });
#endif
#ifdef NOX_HAVE_LEPTONICA
  benchmark::RegisterBenchmark((name + "/leptonica").c_str(), [=](benchmark::State &state) {
    const PixPtr src = make_pix(picture, true);
    const PixPtr dst = make_pix(picture, true);
    const SelPtr sel = make_sel(shape);
    for (auto _ : state) {
      if (operation == kBitmaskDilate) {
        pixDilate(dst.get(), src.get(), sel.get());
      } else {
        pixErode(dst.get(), src.get(), sel.get());
      }
    }
  });
#endif
}

// Dilation, then erosion of the result.
void register_closing(const std::string &name, const Picture &picture, const test::Shape &shape) {
  register_targets(name, [=](benchmark::State &state) {
    const test::MaskPtr src = make_mask(picture);
    const test::MaskPtr dilated = make_mask(picture);
    const test::MaskPtr dst = make_mask(picture);
    const test::ElementPtr element = test::make_element(shape);
    for (auto _ : state) {
      bitmask_dilate(dilated.get(), src.get(), element.get());
      bitmask_erode(dst.get(), dilated.get(), element.get());
      benchmark::ClobberMemory();
    }
  });
#ifdef NOX_HAVE_OPENCV
  benchmark::RegisterBenchmark((name + "/opencv").c_str(), [=](benchmark::State &state) {
    const cv::Mat src = make_mat(picture, true);
    const cv::Mat kernel = make_kernel(shape);
    cv::Mat dst = src.clone();
    for (auto _ : state) cv::morphologyEx(src, dst, cv::MORPH_CLOSE, kernel);
  });
#endif
#ifdef NOX_HAVE_LEPTONICA
  benchmark::RegisterBenchmark((name + "/leptonica").c_str(), [=](benchmark::State &state) {
    const PixPtr src = make_pix(picture, true);
    const PixPtr dst = make_pix(picture, true);
    const SelPtr sel = make_sel(shape);
    for (auto _ : state) pixClose(dst.get(), src.get(), sel.get());
  });
#endif
}

[[maybe_unused]] const bool registered = [] {
  const Picture work = make_picture(448, 252);
  const Picture hd = make_picture(1920, 1080);
  test::Random random(41);
  register_morph("dilate_disc15/448x252", work, test::disc15(), kBitmaskDilate);
  register_morph("dilate_box3/448x252", work, test::box(3, 3), kBitmaskDilate);
  register_morph("erode_box3/448x252", work, test::box(3, 3), kBitmaskErode);
  register_closing("close_cross3/1920x1080", hd, test::cross3());
  register_morph("dilate_box7/448x252", work, test::box(7, 7), kBitmaskDilate);
  register_morph("dilate_irregular15/448x252", work, test::random_shape(15, 15, 0.5, &random),
                 kBitmaskDilate);
  return true;
}();

}  // namespace
}  // namespace nox::bench
