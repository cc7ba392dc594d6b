#include "pentracker/pen_tracker_plain.h"

#include <cstddef>

#include "pentracker/mask_patterns.h"

namespace nox::test {

namespace {

constexpr std::int32_t kWidth = 448;
constexpr std::int32_t kHeight = 252;

constexpr const char *kDisc[15] = {
    ".....#####.....", "...#########...", "..###########..", ".#############.", ".#############.",
    "###############", "###############", "###############", "###############", "###############",
    ".#############.", ".#############.", "..###########..", "...#########...", ".....#####.....",
};

std::vector<PlainPixel> square_offsets() {
  std::vector<PlainPixel> offsets;
  for (std::int32_t y = -1; y <= 1; ++y) {
    for (std::int32_t x = -1; x <= 1; ++x) offsets.push_back({x, y});
  }
  return offsets;
}

std::vector<PlainPixel> disc_offsets() {
  std::vector<PlainPixel> offsets;
  for (std::int32_t y = 0; y < 15; ++y) {
    for (std::int32_t x = 0; x < 15; ++x) {
      if (kDisc[y][x] == '#') offsets.push_back({x - 7, y - 7});
    }
  }
  return offsets;
}

bool inside(const PlainBlob &a, const PlainBlob &b) {
  return a.min_x >= b.min_x && a.min_y >= b.min_y && a.max_x <= b.max_x && a.max_y <= b.max_y;
}

bool inside_any(const PlainBlob &blob, const PlainBlobList &list) {
  for (const auto &region : list.current()) {
    if (inside(blob, *region)) return true;
  }
  return false;
}

bool keep_region(const PlainBlob &blob) {
  return blob.width >= 5 && blob.height >= 5;
}

}  // namespace

PlainPenTracker::PlainPenTracker()
    : luma(kWidth, kHeight, [this](const PlainBlob &blob) { return keep_spot(blob); }),
      v(kWidth, kHeight, keep_region),
      u(kWidth, kHeight, keep_region),
      luma_work_(std::size_t{kWidth} * kHeight),
      u_work_(luma_work_.size()),
      v_work_(luma_work_.size()) {}

PenPosition PlainPenTracker::process(const NoxVideoFrame &frame) {
  scale(frame, 0, &luma_work_);
  scale(frame, 1, &u_work_);
  scale(frame, 2, &v_work_);
  label(u_work_, disc_offsets(), &u);
  label(v_work_, disc_offsets(), &v);
  label(luma_work_, square_offsets(), &luma);
  choose();
  if (pen_ == nullptr) return {};
  return {found_ ? 1 : 0, (448.0F - 1.0F - pen_->centre_x) / 448.0F, pen_->centre_y / 252.0F,
          pressed_ ? 1 : 0};
}

void PlainPenTracker::scale(const NoxVideoFrame &frame, int plane, Plane *work) {
  const std::int32_t width = plane == 0 ? frame.width : frame.width / 2;
  const std::int32_t height = plane == 0 ? frame.height : frame.height / 2;
  Picture view(width, height);
  for (std::int32_t y = 0; y < height; ++y) {
    const std::uint8_t *row =
        frame.planes[plane] + static_cast<std::ptrdiff_t>(y) * frame.strides[plane];
    for (std::int32_t x = 0; x < width; ++x) view.at(x, y) = row[x];
  }
  const Picture scaled = scale_plain(view, {width, height, kWidth, kHeight});
  if (!scaled.samples.empty()) *work = scaled.samples;
}

void PlainPenTracker::label(const Plane &work, const std::vector<PlainPixel> &growth,
                            PlainBlobList *list) {
  const MaskPtr mask = make_mask(kWidth, kHeight);
  for (std::int32_t y = 0; y < kHeight; ++y) {
    for (std::int32_t x = 0; x < kWidth; ++x) {
      if (work[static_cast<std::size_t>(y * kWidth + x)] <= 170) continue;
      for (const PlainPixel &d : growth) {
        if (x + d.x < 0 || x + d.x >= kWidth || y + d.y < 0 || y + d.y >= kHeight) continue;
        set_pixel(mask.get(), x + d.x, y + d.y);
      }
    }
  }
  list->label(mask.get());
}

bool PlainPenTracker::keep_spot(const PlainBlob &blob) const {
  if (blob.width > 30 || blob.height > 30) return false;
  return inside_any(blob, u) || inside_any(blob, v);
}

void PlainPenTracker::weigh(PlainBlob *candidate) {
  for (const auto &region : u.current()) {
    if (!inside(*candidate, *region)) continue;
    const float score = plain_history_score(region.get());
    if (score > best_) {
      best_ = score;
      chosen_ = candidate;
      flag_ = false;
    }
  }
  if (!found_) return;
  for (const auto &region : v.current()) {
    if (!inside(*candidate, *region)) continue;
    const float score = plain_history_score(region.get());
    if (score > best_) {
      best_ = score;
      chosen_ = candidate;
      flag_ = true;
    }
  }
}

void PlainPenTracker::choose() {
  best_ = -1.0F;
  chosen_ = nullptr;
  flag_ = false;
  if (pen_ != nullptr && pen_->successor != nullptr && pen_->successor_score > 0.0F) {
    weigh(pen_->successor);
  } else {
    float longest = -1.0F;
    for (const auto &candidate : luma.current()) {
      const float score = plain_history_score(candidate.get());
      if (longest > score) continue;
      longest = score;
      weigh(candidate.get());
    }
  }
  pen_ = chosen_;
  found_ = chosen_ != nullptr;
  if (found_) pressed_ = flag_;
}

}  // namespace nox::test
