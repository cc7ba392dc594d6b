#include "pentracker/blob_list_plain.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace nox::test {

namespace {

constexpr std::size_t kHistory = 30;

std::size_t at(std::int32_t x) {
  return static_cast<std::size_t>(x);
}

float distance(float ax, float ay, float bx, float by) {
  const float dx = ax - bx;
  const float dy = ay - by;
  return std::sqrt(dx * dx + dy * dy);
}

float size_ratio(std::int32_t candidate, std::int32_t blob) {
  const auto p = static_cast<float>(candidate);
  const auto b = static_cast<float>(blob);
  return blob > candidate ? p * (1.0F / b) : b / p;
}

void take_link(PlainBlob *blob, PlainBlob *p, float score) {
  blob->step_length = distance(p->centre_x, p->centre_y, blob->centre_x, blob->centre_y) + 1e-25F;
  if (p->previous != nullptr) blob->step_change = blob->step_length - p->step_length;
  const float reach = blob->step_change + blob->step_length;
  blob->predicted_x = blob->centre_x + (blob->centre_x - p->centre_x) / blob->step_length * reach;
  blob->predicted_y = blob->centre_y + (blob->centre_y - p->centre_y) / blob->step_length * reach;
  blob->previous = p;
  p->successor = blob;
  p->successor_score = score;
}

PlainGroup *root(PlainGroup *group) {
  while (group->parent != nullptr) group = group->parent;
  return group;
}

}  // namespace

PlainBlobList::PlainBlobList(std::int32_t width, std::int32_t height, PlainFilter filter)
    : width_(width),
      height_(height),
      filter_(std::move(filter)),
      above_(at(width), nullptr),
      row_(at(width), nullptr) {}

std::int32_t PlainBlobList::label(const BitMask *mask) {
  groups_.clear();
  pairs_.clear();
  std::fill(above_.begin(), above_.end(), nullptr);
  std::fill(row_.begin(), row_.end(), nullptr);
  for (std::int32_t y = 0; y < height_; ++y) {
    for (std::int32_t x = 0; x < width_; ++x) {
      if (bitmask_get(mask, x, y) != 0) visit_pixel(x, y);
    }
  }
  merge_groups();
  start_frame();
  PlainFrame &frame = frames_.back();
  std::vector<PlainBlob *> previous;
  if (frames_.size() > 1) {
    for (const auto &blob : frames_[frames_.size() - 2]) previous.push_back(blob.get());
  }
  for (const PlainGroup *group : components()) {
    std::unique_ptr<PlainBlob> blob = make_blob(*group);
    blob->index = static_cast<std::int32_t>(frame.size());
    if (filter_ && !filter_(*blob)) continue;
    plain_link(blob.get(), previous);
    frame.push_back(std::move(blob));
  }
  return static_cast<std::int32_t>(frame.size());
}

void PlainBlobList::visit_pixel(std::int32_t x, std::int32_t y) {
  if (y - last_y_ >= 2) {
    std::fill(above_.begin(), above_.end(), nullptr);
    std::fill(row_.begin(), row_.end(), nullptr);
  } else if (y - last_y_ == 1) {
    std::swap(above_, row_);
    std::fill(row_.begin(), row_.end(), nullptr);
  }
  PlainGroup *group = above_[at(x)];
  if (x - last_x_ == 1) {
    PlainGroup *left = row_[at(x - 1)];
    if (group == nullptr) {
      group = left;
    } else if (left->id != group->id) {
      PlainGroup *small = left->id < group->id ? left : group;
      add_pair(small, small == left ? group : left);
      group = small;
    }
  }
  if (group == nullptr) {
    groups_.push_back(std::make_unique<PlainGroup>());
    group = groups_.back().get();
    group->id = static_cast<std::int32_t>(groups_.size()) - 1;
  }
  group->pixels.push_back({x, y});
  row_[at(x)] = group;
  last_x_ = x;
  last_y_ = y;
}

void PlainBlobList::add_pair(PlainGroup *small, PlainGroup *large) {
  const std::pair pair(small, large);
  if (std::find(pairs_.begin(), pairs_.end(), pair) == pairs_.end()) pairs_.push_back(pair);
}

void PlainBlobList::merge_groups() {
  for (const auto &[small, large] : pairs_) {
    PlainGroup *kept = root(small);
    PlainGroup *absorbed = root(large);
    if (kept == absorbed) continue;
    kept->pixels.insert(kept->pixels.end(), absorbed->pixels.begin(), absorbed->pixels.end());
    absorbed->parent = kept;
  }
}

std::vector<const PlainGroup *> PlainBlobList::components() const {
  std::vector<const PlainGroup *> kept;
  for (const auto &group : groups_) {
    if (group->parent == nullptr) kept.push_back(group.get());
  }
  return kept;
}

void PlainBlobList::start_frame() {
  if (frames_.size() == kHistory) frames_.pop_front();
  frames_.emplace_back();
}

std::unique_ptr<PlainBlob> PlainBlobList::make_blob(const PlainGroup &group) const {
  auto blob = std::make_unique<PlainBlob>();
  blob->mask_width = width_;
  blob->mask_height = height_;
  blob->pixels = group.pixels;
  blob->pixel_count = static_cast<std::int32_t>(group.pixels.size());
  for (const PlainPixel &pixel : group.pixels) {
    blob->min_x = std::min(blob->min_x, pixel.x);
    blob->min_y = std::min(blob->min_y, pixel.y);
    blob->max_x = std::max(blob->max_x, pixel.x);
    blob->max_y = std::max(blob->max_y, pixel.y);
  }
  const auto span_x = static_cast<float>(blob->max_x - blob->min_x);
  const auto span_y = static_cast<float>(blob->max_y - blob->min_y);
  blob->width = static_cast<std::int32_t>(span_x + 1.0F);
  blob->height = static_cast<std::int32_t>(span_y + 1.0F);
  blob->centre_x = span_x * 0.5F + static_cast<float>(blob->min_x);
  blob->centre_y = span_y * 0.5F + static_cast<float>(blob->min_y);
  return blob;
}

float plain_match_score(const PlainBlob &candidate, const PlainBlob &blob) {
  float position = 1.0F;
  if (candidate.previous != nullptr) {
    const float d =
        distance(candidate.predicted_x, candidate.predicted_y, blob.centre_x, blob.centre_y);
    const float v = (d + 1e-25F) * 0.05F;
    position = static_cast<float>(1.0 - std::min(static_cast<double>(v), 0.95));
  }
  const auto p = static_cast<float>(candidate.pixel_count);
  const auto b = static_cast<float>(blob.pixel_count);
  const float count = blob.pixel_count < candidate.pixel_count ? b / p : p * (1.0F / b);
  return position * count * size_ratio(candidate.width, blob.width) *
         size_ratio(candidate.height, blob.height);
}

void plain_link(PlainBlob *blob, const std::vector<PlainBlob *> &previous) {
  float best = 0.0F;
  for (PlainBlob *p : previous) {
    const float score = plain_match_score(*p, *blob);
    if (score > best && score > p->successor_score) {
      take_link(blob, p, score);
      best = score;
    }
  }
  blob->match_score = best;
}

float plain_history_score(const PlainBlob *blob) {
  float sum = 0.0F;
  for (int link = 0; link < 29; ++link) {
    if (blob->match_score < 0.01F) return 0.0F;
    sum += blob->match_score;
    blob = blob->previous;
    if (blob == nullptr) return 0.0F;
  }
  return sum;
}

}  // namespace nox::test
