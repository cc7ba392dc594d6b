#include "pentracker/peer_trackers.h"

#include <cstddef>

#ifdef NOX_HAVE_ZIMG
#include <zimg.h>
#endif

#include "pentracker/pen_tracker.h"

namespace nox::bench {

namespace {

constexpr double kThreshold = 170;

cv::Mat plane_of(const NoxVideoFrame &frame, int plane) {
  return cv::Mat(frame.plane_heights[plane], frame.plane_widths[plane], CV_8U, frame.planes[plane],
                 static_cast<std::size_t>(frame.strides[plane]));
}

// Means over areas: OpenCV's other methods skip samples when they reduce.
class OpenCvScaler : public PlaneScaler {
 public:
  void scale(const NoxVideoFrame &frame, int plane, cv::Mat *work) override {
    cv::resize(plane_of(frame, plane), *work, {kPenWorkWidth, kPenWorkHeight}, 0, 0,
               cv::INTER_AREA);
  }
};

#ifdef NOX_HAVE_ZIMG

class ZimgGraph {
 public:
  ZimgGraph(int width, int height) {
    zimg_image_format src;
    zimg_image_format_default(&src, ZIMG_API_VERSION);
    src.width = static_cast<unsigned>(width);
    src.height = static_cast<unsigned>(height);
    src.pixel_type = ZIMG_PIXEL_BYTE;
    src.color_family = ZIMG_COLOR_GREY;
    zimg_image_format dst = src;
    dst.width = kPenWorkWidth;
    dst.height = kPenWorkHeight;
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = ZIMG_RESIZE_LANCZOS;
    params.filter_param_a = 2;  // as many taps as the tracker's own
    graph_ = zimg_filter_graph_build(&src, &dst, &params);
    std::size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(graph_, &bytes);
    scratch_.resize(bytes + 64);
  }
  ~ZimgGraph() { zimg_filter_graph_free(graph_); }
  ZimgGraph(const ZimgGraph &) = delete;
  ZimgGraph &operator=(const ZimgGraph &) = delete;

  void run(const NoxVideoFrame &frame, int plane, cv::Mat *work) {
    zimg_image_buffer_const src{};
    src.version = ZIMG_API_VERSION;
    src.plane[0] = {frame.planes[plane], frame.strides[plane], ZIMG_BUFFER_MAX};
    zimg_image_buffer dst{};
    dst.version = ZIMG_API_VERSION;
    dst.plane[0] = {work->data, static_cast<std::ptrdiff_t>(work->step), ZIMG_BUFFER_MAX};
    auto *scratch = reinterpret_cast<void *>(
        (reinterpret_cast<std::uintptr_t>(scratch_.data()) + 63) / 64 * 64);
    zimg_filter_graph_process(graph_, &src, &dst, scratch, nullptr, nullptr, nullptr, nullptr);
  }

 private:
  zimg_filter_graph *graph_;
  std::vector<std::uint8_t> scratch_;
};

class ZimgScaler : public PlaneScaler {
 public:
  void scale(const NoxVideoFrame &frame, int plane, cv::Mat *work) override {
    if (luma_ == nullptr) {
      luma_ = std::make_unique<ZimgGraph>(frame.width, frame.height);
      chroma_ = std::make_unique<ZimgGraph>(frame.width / 2, frame.height / 2);
    }
    (plane == 0 ? luma_ : chroma_)->run(frame, plane, work);
  }

 private:
  std::unique_ptr<ZimgGraph> luma_, chroma_;
};

#endif

void find_boxes(const cv::Mat &mask, BoxFinder finder, Boxes *boxes) {
  if (finder == BoxFinder::kContours) {
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(mask, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
    for (const auto &contour : contours) boxes->push_back(cv::boundingRect(contour));
    return;
  }
  cv::Mat labels, stats, centroids;
  const int count = cv::connectedComponentsWithStats(mask, labels, stats, centroids, 4, CV_32S);
  for (int i = 1; i < count; ++i) {
    boxes->emplace_back(stats.at<int>(i, cv::CC_STAT_LEFT), stats.at<int>(i, cv::CC_STAT_TOP),
                        stats.at<int>(i, cv::CC_STAT_WIDTH), stats.at<int>(i, cv::CC_STAT_HEIGHT));
  }
}

}  // namespace

cv::Mat disc_kernel() {
  constexpr int kReach[15] = {2, 4, 5, 6, 6, 7, 7, 7, 7, 7, 6, 6, 5, 4, 2};
  cv::Mat kernel(15, 15, CV_8U, cv::Scalar(0));
  for (int row = 0; row < 15; ++row) {
    kernel(cv::Rect(7 - kReach[row], row, 2 * kReach[row] + 1, 1)).setTo(1);
  }
  return kernel;
}

std::unique_ptr<PlaneScaler> opencv_scaler() {
  return std::make_unique<OpenCvScaler>();
}

#ifdef NOX_HAVE_ZIMG
std::unique_ptr<PlaneScaler> zimg_scaler() {
  return std::make_unique<ZimgScaler>();
}
#endif

std::size_t peer_boxes(const NoxVideoFrame &frame, PlaneScaler *scaler, BoxFinder finder) {
  static const cv::Mat disc = disc_kernel();
  static const cv::Mat square = cv::Mat::ones(3, 3, CV_8U);
  Boxes boxes;
  // Rows of 64-byte multiples, as zimg asks for.
  cv::Mat work(kPenWorkHeight, kPenWorkWidth, CV_8U), mask, grown;
  for (int plane = 0; plane < 3; ++plane) {
    scaler->scale(frame, plane, &work);
    cv::threshold(work, mask, kThreshold, 255, cv::THRESH_BINARY);
    cv::dilate(mask, grown, plane == 0 ? square : disc);
    find_boxes(grown, finder, &boxes);
  }
  return boxes.size();
}

}  // namespace nox::bench
