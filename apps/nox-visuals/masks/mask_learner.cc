#include "nox-visuals/masks/mask_learner.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace nox::app {
namespace {

constexpr std::uint8_t kColoured = 170;
constexpr std::uint32_t kOneFrameIn = 50;
constexpr int kMargin = 3;

// In widths: a pen that was followed so far from where it was first has moved, unless it jumped.
constexpr float kMoved = 0.1F;
constexpr float kJump = 0.12F;

void hide_around(int left, int top, int right, int bottom, PictureMask *mask) {
  const int to_x = std::min(right + kMargin, mask->width() - 1);
  const int to_y = std::min(bottom + kMargin, mask->height() - 1);
  for (int y = std::max(top - kMargin, 0); y <= to_y; ++y) {
    for (int x = std::max(left - kMargin, 0); x <= to_x; ++x) mask->hide(x, y);
  }
}

void copy_samples(const NoxVideoFrame &from, NoxVideoFrame *to) {
  for (int plane = 0; plane < 3; ++plane) {
    const int rows = std::min(from.plane_heights[plane], to->plane_heights[plane]);
    const int samples = std::min(from.plane_widths[plane], to->plane_widths[plane]);
    for (int y = 0; y < rows; ++y) {
      std::memcpy(to->planes[plane] + static_cast<std::ptrdiff_t>(y) * to->strides[plane],
                  from.planes[plane] + static_cast<std::ptrdiff_t>(y) * from.strides[plane],
                  static_cast<std::size_t>(samples));
    }
  }
}

}  // namespace

MaskLearner::MaskLearner()
    : eye_(pen_tracker_new()),
      second_(pen_tracker_new()),
      coloured_(static_cast<std::size_t>(kPenWorkWidth) * kPenWorkHeight),
      pens_(kPenWorkWidth, kPenWorkHeight) {}

MaskLearner::~MaskLearner() {
  nox_video_frame_free_planes(&blanked_);
}

void MaskLearner::look(const NoxVideoFrame &frame, bool pens) {
  float x = 0;
  float y = 0;
  std::int32_t pressed = 0;
  const bool found = pen_tracker_process(eye_.get(), &frame, nullptr, &x, &y, &pressed) != 0;
  follow(found ? std::optional(Place{x, y}) : std::nullopt);
  count_colours();
  if (pens) look_for_pens(frame);
}

// A chroma plane that the tracker has brought to its size.
void MaskLearner::count_colours() {
  ++frames_;
  const std::uint8_t *u = eye_->u_work_frame.planes[0];
  const std::uint8_t *v = eye_->v_work_frame.planes[0];
  for (std::size_t i = 0; i < coloured_.size(); ++i) {
    if (u[i] >= kColoured || v[i] >= kColoured) ++coloured_[i];
  }
}

void MaskLearner::follow(const std::optional<Place> &pen) {
  const auto far = [](const Place &a, const Place &b) {
    return std::hypot(a.x - b.x, (a.y - b.y) * kPenWorkHeight / kPenWorkWidth);
  };
  if (!pen || !last_ || far(*pen, *last_) > kJump) from_ = pen;
  last_ = pen;
  if (pen && far(*pen, *from_) > kMoved) moved_ = true;
}

void MaskLearner::blank_anew(const NoxVideoFrame &frame) {
  nox_video_frame_free_planes(&blanked_);
  nox_video_frame_alloc(&blanked_, kNoxFormatI420, frame.width, frame.height);
  blanking_ = Blanking(mask().scaled(frame.width, frame.height));
}

void MaskLearner::look_for_pens(const NoxVideoFrame &frame) {
  if (blanked_.width != frame.width || blanked_.height != frame.height) blank_anew(frame);
  copy_samples(frame, &blanked_);
  blanking_.apply(&blanked_, 0);
  float x = 0;
  float y = 0;
  std::int32_t pressed = 0;
  if (pen_tracker_process(second_.get(), &blanked_, nullptr, &x, &y, &pressed) == 0) return;
  const Blob &spot = *second_->pen;
  hide_around(spot.min_x, spot.min_y, spot.max_x, spot.max_y, &pens_);
  blank_anew(frame);
}

PictureMask MaskLearner::mask() const {
  PictureMask mask = pens_;
  for (int y = 0; y < mask.height(); ++y) {
    for (int x = 0; x < mask.width(); ++x) {
      const std::uint32_t count = coloured_[static_cast<std::size_t>(y * mask.width() + x)];
      if (count > 0 && count * kOneFrameIn >= static_cast<std::uint32_t>(frames_)) {
        hide_around(x, y, x, y, &mask);
      }
    }
  }
  return mask;
}

}  // namespace nox::app
