// What one would put together from general libraries to get from a picture to the boxes of its
// spots and regions: no links from frame to frame and no choice of a pen, which come on top.
#ifndef PENTRACKER_PEER_TRACKERS_H_
#define PENTRACKER_PEER_TRACKERS_H_

#include <cstdint>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "video/nox_video_frame.h"

namespace nox::bench {

using Boxes = std::vector<cv::Rect>;

// The disc of the tracker as an OpenCV kernel.
cv::Mat disc_kernel();

// Scales one plane to work size.
class PlaneScaler {
 public:
  virtual ~PlaneScaler() = default;
  virtual void scale(const NoxVideoFrame &frame, int plane, cv::Mat *work) = 0;
};

std::unique_ptr<PlaneScaler> opencv_scaler();
#ifdef NOX_HAVE_ZIMG
std::unique_ptr<PlaneScaler> zimg_scaler();
#endif

enum class BoxFinder { kContours, kConnectedComponents };

// Scales, thresholds, dilates and finds the boxes of all three planes; returns how many there are.
std::size_t peer_boxes(const NoxVideoFrame &frame, PlaneScaler *scaler, BoxFinder finder);

}  // namespace nox::bench

#endif  // PENTRACKER_PEER_TRACKERS_H_
