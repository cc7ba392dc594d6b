// The vectorizer as one would put it together from OpenCV.
#ifndef VECTORIZER_OPENCV_VECTORIZER_H_
#define VECTORIZER_OPENCV_VECTORIZER_H_

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "video/nox_video_frame.h"

namespace nox::bench {

// 16-bit Sobel, threshold and closing on 8-bit masks, a counter per pixel, masked copies. It keeps
// its planes between frames, and leaves the outermost rows and columns to OpenCV's own border
// rules.
class OpencvVectorizer {
 public:
  OpencvVectorizer(std::int32_t width, std::int32_t height)
      : run_(cv::Mat::zeros(height, width, CV_8U)), hold_(cv::Mat::zeros(height, width, CV_16U)) {}

  void process(const NoxVideoFrame &frame) {
    const cv::Mat luma = plane(frame, 0);
    find_edges(luma);
    count();
    draw_luma(luma);
    find_pairs();
    for (int p : {1, 2}) draw_chroma(plane(frame, p));
  }

 private:
  static cv::Mat plane(const NoxVideoFrame &frame, int p) {
    return cv::Mat(frame.plane_heights[p], frame.plane_widths[p], CV_8U, frame.planes[p],
                   static_cast<std::size_t>(frame.strides[p]));
  }

  void find_edges(const cv::Mat &luma) {
    cv::Sobel(luma, sobel_, CV_16S, 1, 0);
    cv::convertScaleAbs(sobel_, gradient_, 5);
    cv::multiply(gradient_, gradient_, square_x_, 1, CV_16U);
    cv::Sobel(luma, sobel_, CV_16S, 0, 1);
    cv::convertScaleAbs(sobel_, gradient_, 5);
    cv::multiply(gradient_, gradient_, square_y_, 1, CV_16U);
    cv::add(square_x_, square_y_, square_x_);
    cv::compare(square_x_, 128 * 128 + 2 * 128, edges_, cv::CMP_GT);
    cv::morphologyEx(edges_, edges_, cv::MORPH_CLOSE, cross_);
  }

  // A run length that stops at 100 and a countdown from 500 for every pixel.
  void count() {
    cv::add(run_, 1, run_);
    cv::min(run_, 100, run_);
    cv::bitwise_and(run_, edges_, run_);
    cv::compare(run_, 100, lasting_, cv::CMP_EQ);
    cv::subtract(hold_, 1, hold_);
    hold_.setTo(500, lasting_);
    cv::compare(hold_, 0, shown_, cv::CMP_GT);
  }

  void draw_luma(cv::Mat luma) {
    luma.convertTo(washed_, CV_8U, 0.25, 191.375);
    luma.copyTo(washed_, shown_);
    washed_.copyTo(luma);
  }

  // Of every second row of the mask, whether one or both of each pair of columns are set.
  void find_pairs() {
    const cv::Mat pairs(shown_.rows / 2, shown_.cols / 2, CV_8UC2, shown_.data, 2 * shown_.step);
    cv::extractChannel(pairs, left_, 0);
    cv::extractChannel(pairs, right_, 1);
    cv::bitwise_or(left_, right_, any_);
    cv::bitwise_and(left_, right_, both_);
  }

  void draw_chroma(cv::Mat chroma) {
    chroma.convertTo(washed_chroma_, CV_8U, 0.25, 96.125);
    chroma.convertTo(half_chroma_, CV_8U, 0.625, 48.0625);
    half_chroma_.copyTo(washed_chroma_, any_);
    chroma.copyTo(washed_chroma_, both_);
    washed_chroma_.copyTo(chroma);
  }

  cv::Mat cross_ = cv::getStructuringElement(cv::MORPH_CROSS, {3, 3});
  cv::Mat run_, hold_;
  cv::Mat sobel_, gradient_, square_x_, square_y_, edges_, lasting_, shown_;
  cv::Mat washed_, left_, right_, any_, both_, washed_chroma_, half_chroma_;
};

}  // namespace nox::bench

#endif  // VECTORIZER_OPENCV_VECTORIZER_H_
