// Thresholds and word operations at the pen tracker's working size and at full HD.
#include "masks/bitmask.h"

#include <benchmark/benchmark.h>

#include <string>

#include "masks/mask_maker.h"
#include "masks/peers.h"
#include "masks/pictures.h"
#include "masks/target_runs.h"

namespace nox::bench {
namespace {

void register_threshold(const std::string &name, const Picture &picture) {
  register_targets(name, [picture](benchmark::State &state) {
    const test::MaskPtr mask = test::make_mask(picture.width, picture.height);
    for (auto _ : state) {
      bitmask_threshold(mask.get(), picture.samples.get(), picture.width, kLimit);
      benchmark::ClobberMemory();
    }
  });
#ifdef NOX_HAVE_OPENCV
  benchmark::RegisterBenchmark((name + "/opencv").c_str(), [picture](benchmark::State &state) {
    const cv::Mat src = make_mat(picture, false);
    cv::Mat dst = src.clone();
    for (auto _ : state) cv::threshold(src, dst, kLimit, 255, cv::THRESH_BINARY);
  });
#endif
#ifdef NOX_HAVE_LEPTONICA
  benchmark::RegisterBenchmark((name + "/leptonica").c_str(), [picture](benchmark::State &state) {
    const PixPtr src = make_pix(picture, false);
    for (auto _ : state) PixPtr(pixThresholdToBinary(src.get(), kLimit + 1));
  });
#endif
}

void register_and_not(const std::string &name, const Picture &picture) {
  register_targets(name, [picture](benchmark::State &state) {
    const test::MaskPtr a = make_mask(picture);
    const test::MaskPtr b = make_mask(picture);
    const test::MaskPtr dst = make_mask(picture);
    for (auto _ : state) {
      bitmask_and_not(dst.get(), a.get(), b.get());
      benchmark::ClobberMemory();
    }
  });
#ifdef NOX_HAVE_LEPTONICA
  benchmark::RegisterBenchmark((name + "/leptonica").c_str(), [picture](benchmark::State &state) {
    const PixPtr a = make_pix(picture, true);
    const PixPtr b = make_pix(picture, true);
    const PixPtr dst = make_pix(picture, true);
    for (auto _ : state) {
      pixCopy(dst.get(), a.get());
      pixRasterop(dst.get(), 0, 0, picture.width, picture.height, PIX_DST & PIX_NOT(PIX_SRC),
                  b.get(), 0, 0);
    }
  });
#endif
}

void register_or(const std::string &name, const Picture &picture) {
  register_targets(name, [picture](benchmark::State &state) {
    const test::MaskPtr a = make_mask(picture);
    const test::MaskPtr dst = make_mask(picture);
    for (auto _ : state) {
      bitmask_or(dst.get(), dst.get(), a.get());
      benchmark::ClobberMemory();
    }
  });
#ifdef NOX_HAVE_OPENCV
  benchmark::RegisterBenchmark((name + "/opencv").c_str(), [picture](benchmark::State &state) {
    const cv::Mat a = make_mat(picture, true);
    cv::Mat dst = a.clone();
    for (auto _ : state) cv::bitwise_or(dst, a, dst);
  });
#endif
#ifdef NOX_HAVE_LEPTONICA
  benchmark::RegisterBenchmark((name + "/leptonica").c_str(), [picture](benchmark::State &state) {
    const PixPtr a = make_pix(picture, true);
    const PixPtr dst = make_pix(picture, true);
    for (auto _ : state) pixOr(dst.get(), dst.get(), a.get());
  });
#endif
}

[[maybe_unused]] const bool registered = [] {
  const Picture work = make_picture(448, 252);
  const Picture hd = make_picture(1920, 1080);
  register_threshold("threshold/448x252", work);
  register_threshold("threshold/1920x1080", hd);
  register_or("or/448x252", work);
  register_or("or/1920x1080", hd);
  register_and_not("and_not/448x252", work);
  return true;
}();

}  // namespace
}  // namespace nox::bench
