// Labelling alone: one mask in, its blobs out, linked to those of the frame before.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "pentracker/blob_list.h"
#include "pentracker/pen_pictures.h"
#include "pentracker/pen_tracker.h"
#include "support/random.h"
#ifdef NOX_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef NOX_HAVE_LEPTONICA
#include <leptonica/allheaders.h>
#endif

namespace {

using Masks = std::vector<BitMask *>;

// Masks of consecutive frames, so that blobs move as they do in a video.
constexpr int kMasks = 16;

// What the tracker labels of these pictures: its grown masks of one plane. Where nothing moves a
// mask can be that of the frame before, which is not labelled again; a pixel in a corner of every
// second one sees to it that all are.
Masks tracker_masks(nox::bench::FramePool *pictures, BitMask *PenTracker::*mask) {
  Masks masks;
  PenTracker *tracker = pen_tracker_new();
  for (int i = 0; i < kMasks; ++i) {
    NoxVideoFrame frame = nox::bench::frame_in(pictures->next());
    float x, y;
    std::int32_t pressed;
    pen_tracker_process(tracker, &frame, &frame, &x, &y, &pressed);
    masks.push_back(bitmask_new(kPenWorkWidth, kPenWorkHeight));
    bitmask_copy(masks.back(), tracker->*mask);
    if (i % 2 == 0) masks.back()->data[0] |= 1;
  }
  pen_tracker_free(tracker);
  return masks;
}

// Every second pixel set, at random.
Masks noise_masks() {
  Masks masks;
  nox::test::Random random(3);
  for (int i = 0; i < kMasks; ++i) {
    masks.push_back(bitmask_new(kPenWorkWidth, kPenWorkHeight));
    for (std::int32_t y = 0; y < kPenWorkHeight; ++y) {
      random.fill(masks.back()->data + static_cast<std::ptrdiff_t>(y) * masks.back()->stride,
                  kPenWorkWidth / 8);
    }
  }
  return masks;
}

void label(benchmark::State &state, const Masks &masks, BlobFilter filter) {
  BlobList *list = blob_list_new(kPenWorkWidth, kPenWorkHeight);
  blob_list_set_filter(list, filter, nullptr);
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(blob_list_label(list, masks[next]));
    next = (next + 1) % masks.size();
  }
  blob_list_free(list);
}

#ifdef NOX_HAVE_OPENCV
void label_opencv(benchmark::State &state, const Masks &masks) {
  std::vector<cv::Mat> pictures;
  for (const BitMask *mask : masks) {
    pictures.emplace_back(mask->height, mask->width, CV_8U);
    for (std::int32_t y = 0; y < mask->height; ++y) {
      for (std::int32_t x = 0; x < mask->width; ++x) {
        pictures.back().at<std::uint8_t>(y, x) =
            static_cast<std::uint8_t>(bitmask_get(mask, x, y) * 255);
      }
    }
  }
  std::size_t next = 0;
  cv::Mat labels, stats, centroids;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        cv::connectedComponentsWithStats(pictures[next], labels, stats, centroids, 4, CV_32S));
    next = (next + 1) % pictures.size();
  }
}
#endif

#ifdef NOX_HAVE_LEPTONICA
void label_leptonica(benchmark::State &state, const Masks &masks) {
  std::vector<PIX *> pictures;
  for (const BitMask *mask : masks) {
    pictures.push_back(pixCreate(mask->width, mask->height, 1));
    for (std::int32_t y = 0; y < mask->height; ++y) {
      for (std::int32_t x = 0; x < mask->width; ++x) {
        if (bitmask_get(mask, x, y) != 0) pixSetPixel(pictures.back(), x, y, 1);
      }
    }
  }
  std::size_t next = 0;
  for (auto _ : state) {
    BOXA *boxes = pixConnCompBB(pictures[next], 4);
    benchmark::DoNotOptimize(boxes);
    boxaDestroy(&boxes);
    next = (next + 1) % pictures.size();
  }
  for (PIX *&picture : pictures) pixDestroy(&picture);
}
#endif

void register_all(const std::string &name, const Masks &masks, BlobFilter filter) {
  benchmark::RegisterBenchmark((name + "/nox").c_str(), label, masks, filter);
#ifdef NOX_HAVE_OPENCV
  cv::setNumThreads(1);
  benchmark::RegisterBenchmark((name + "/connectedComponentsWithStats").c_str(), label_opencv,
                               masks);
#endif
#ifdef NOX_HAVE_LEPTONICA
  benchmark::RegisterBenchmark((name + "/pixConnCompBB").c_str(), label_leptonica, masks);
#endif
}

}  // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  nox::bench::FramePool *const scene = &nox::bench::scene_pool();
  const Masks luma = tracker_masks(scene, &PenTracker::luma_dilated);
  const Masks u = tracker_masks(scene, &PenTracker::u_dilated);
  const Masks v = tracker_masks(scene, &PenTracker::v_dilated);
  nox::bench::FramePool *const white_noise = &nox::bench::noise_pool();
  const Masks noise_luma = tracker_masks(white_noise, &PenTracker::luma_dilated);
  const Masks noise_u = tracker_masks(white_noise, &PenTracker::u_dilated);
  const Masks noise = noise_masks();
  register_all("label/scene, luma mask", luma, nullptr);
  register_all("label/scene, U mask", u, chroma_blob_filter);
  register_all("label/scene, V mask", v, chroma_blob_filter);
  register_all("label/white noise, luma mask", noise_luma, nullptr);
  register_all("label/white noise, U mask", noise_u, chroma_blob_filter);
  register_all("label/noise mask, the same again", {noise[0]}, nullptr);
  register_all("label/noise masks, regions kept", noise, chroma_blob_filter);
  register_all("label/noise masks, all kept", noise, nullptr);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  for (const Masks *masks : {&luma, &u, &v, &noise_luma, &noise_u, &noise}) {
    for (BitMask *mask : *masks) bitmask_free(mask);
  }
  return 0;
}
