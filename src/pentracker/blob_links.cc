#include "pentracker/blob_links.h"

#include <algorithm>
#include <cmath>

#include "pentracker/crowd_linker.h"

namespace nox::pentracker {

namespace {

// Up to this many earlier blobs, a walk over all of them takes less time than to sort them.
constexpr std::int32_t kFew = 16;

float step_length(const Blob &from, const Blob &to) {
  const float dx = from.centre_x - to.centre_x;
  const float dy = from.centre_y - to.centre_y;
  return std::sqrt(dx * dx + dy * dy) + kTinyLength;
}

void link_one_by_one(BlobSpan earlier, Blob *blob) {
  const LinkQuery query(*blob);
  LinkTaker taker(blob);
  for (Blob *candidate = earlier.blobs; candidate != earlier.blobs + earlier.count; ++candidate) {
    const float score = match_score(*candidate, query);
    if (taker.wants(*candidate, score)) taker.take(candidate, score);
  }
  taker.finish();
}

}  // namespace

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
  if (earlier.count == 0 || current.count == 0) return;
  Blob *const end = current.blobs + current.count;
  if (earlier.count <= kFew) {
    for (Blob *blob = current.blobs; blob != end; ++blob) link_one_by_one(earlier, blob);
    return;
  }
  if (crowd_ == nullptr) crowd_ = std::make_unique<CrowdLinker>();
  crowd_->start(earlier);
  for (Blob *blob = current.blobs; blob != end; ++blob) crowd_->link(blob);
}

}  // namespace nox::pentracker
