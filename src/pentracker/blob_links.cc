#include "pentracker/blob_links.h"

#include <algorithm>
#include <cmath>

#include "pentracker/link_index.h"

namespace nox::pentracker {

namespace {

// Keeps lengths above 0, so that a direction can be had of a blob that stands still.
constexpr float kTinyLength = 1e-25F;
constexpr float kLossPerPixel = 0.05F;
constexpr double kHighestLoss = 0.95;

// Up to this many earlier blobs are all looked at; more are worth an index.
constexpr std::int32_t kPlainLimit = 32;

float length(float dx, float dy) {
  return std::sqrt(dx * dx + dy * dy);
}

float step_length(const Blob &from, const Blob &to) {
  return length(from.centre_x - to.centre_x, from.centre_y - to.centre_y) + kTinyLength;
}

void link_plain(BlobSpan earlier, Blob *blob) {
  const BlobShape shape(*blob);
  LinkTaker taker(blob);
  for (std::int32_t i = 0; i < earlier.count; ++i) {
    Blob *candidate = earlier.blobs + i;
    const float score = match_score(*candidate, *blob, shape);
    if (taker.wants(*candidate, score)) taker.take(candidate, score);
  }
  taker.finish();
}

}  // namespace

BlobShape::BlobShape(const Blob &blob)
    : count(static_cast<float>(blob.pixel_count)),
      width(static_cast<float>(blob.width)),
      height(static_cast<float>(blob.height)),
      inverse_count(1.0F / count),
      inverse_width(1.0F / width),
      inverse_height(1.0F / height) {}

float position_factor(float dx, float dy) {
  const float loss = (length(dx, dy) + kTinyLength) * kLossPerPixel;
  return static_cast<float>(1.0 - std::min(static_cast<double>(loss), kHighestLoss));
}

float match_score(const Blob &earlier, const Blob &blob, const BlobShape &shape) {
  const float position = earlier.previous == nullptr
                             ? 1.0F
                             : position_factor(earlier.predicted_x - blob.centre_x,
                                               earlier.predicted_y - blob.centre_y);
  return shape_score(position, static_cast<float>(earlier.pixel_count),
                     static_cast<float>(earlier.width), static_cast<float>(earlier.height), shape);
}

float highest_score(float count) {
  // Above this the ratio of neighbouring counts rounds too near to 1 to tell equal ones apart.
  constexpr float kExactCounts = 4194304.0F;
  return count <= kExactCounts ? product_with_inverse(count, 1.0F / count) : 1.0F;
}

void LinkTaker::take(Blob *earlier, float score) {
  earlier->successor = blob_;
  earlier->successor_score = score;
  best_ = score;
  last_ = earlier;
  if (earlier->previous != nullptr) last_followed_ = earlier;
}

void LinkTaker::finish() {
  blob_->match_score = best_;
  if (last_ == nullptr) return;
  blob_->previous = last_;
  blob_->step_length = step_length(*last_, *blob_);
  // The change is that of the last link whose blob had one, even when a better link followed.
  if (last_followed_ != nullptr) {
    blob_->step_change = step_length(*last_followed_, *blob_) - last_followed_->step_length;
  }
  const float reach = blob_->step_change + blob_->step_length;
  const float dx = blob_->centre_x - last_->centre_x;
  const float dy = blob_->centre_y - last_->centre_y;
  blob_->predicted_x = blob_->centre_x + dx / blob_->step_length * reach;
  blob_->predicted_y = blob_->centre_y + dy / blob_->step_length * reach;
}

BlobLinker::BlobLinker() = default;
BlobLinker::~BlobLinker() = default;

void BlobLinker::link(BlobSpan earlier, BlobSpan current) {
  if (earlier.count <= kPlainLimit) {
    for (std::int32_t i = 0; i < current.count; ++i) link_plain(earlier, current.blobs + i);
    return;
  }
  if (index_ == nullptr) index_ = std::make_unique<LinkIndex>();
  index_->start(earlier);
  for (std::int32_t i = 0; i < current.count; ++i) index_->link(current.blobs + i);
}

}  // namespace nox::pentracker
