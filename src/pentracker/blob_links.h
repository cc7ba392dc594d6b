// Which blob of the frame before does a new blob continue?
#ifndef PENTRACKER_BLOB_LINKS_H_
#define PENTRACKER_BLOB_LINKS_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

#include "pentracker/blob_list.h"

namespace nox::pentracker {

// The blobs of one frame, in list order.
struct BlobSpan {
  Blob *blobs;
  std::int32_t count;
};

// The ratio of the smaller to the larger size, rounded as the two forms round: the second can be
// one bit below 1 for equal sizes. Counts of pixels use it when they are equal, widths and heights
// do not.
inline float quotient(float smaller, float larger) {
  return smaller / larger;
}
inline float product_with_inverse(float smaller, float inverse_of_larger) {
  return smaller * inverse_of_larger;
}

// The sizes of a new blob, as every comparison with it needs them.
struct BlobShape {
  explicit BlobShape(const Blob &blob)
      : count(static_cast<float>(blob.pixel_count)),
        width(static_cast<float>(blob.width)),
        height(static_cast<float>(blob.height)),
        inverse_count(1.0F / count),
        inverse_width(1.0F / width),
        inverse_height(1.0F / height) {}
  float count, width, height;
  float inverse_count, inverse_width, inverse_height;
};

// `position` times the likeness of the sizes of an earlier blob to `shape`.
inline float shape_score(float position, float count, float width, float height,
                         const BlobShape &shape) {
  const float by_count = shape.count < count ? quotient(shape.count, count)
                                             : product_with_inverse(count, shape.inverse_count);
  const float by_width = shape.width > width ? product_with_inverse(width, shape.inverse_width)
                                             : quotient(shape.width, width);
  const float by_height = shape.height > height ? product_with_inverse(height, shape.inverse_height)
                                                : quotient(shape.height, height);
  return position * by_count * by_width * by_height;
}

// How much a blob's distance from where it was expected counts: falls from 1 by kLossPerPixel per
// pixel and stays at kFarPosition from 19 pixels on.
inline constexpr float kLossPerPixel = 0.05F;
inline constexpr double kHighestLoss = 0.95;
inline constexpr float kFarPosition = static_cast<float>(1.0 - kHighestLoss);
// Keeps lengths above 0, so that a direction can be had of a blob that stands still.
inline constexpr float kTinyLength = 1e-25F;
inline float position_factor(float dx, float dy) {
  const float loss = (std::sqrt(dx * dx + dy * dy) + kTinyLength) * kLossPerPixel;
  return static_cast<float>(1.0 - std::min(static_cast<double>(loss), kHighestLoss));
}

// What a new blob brings to every comparison.
struct LinkQuery {
  explicit LinkQuery(const Blob &blob) : x(blob.centre_x), y(blob.centre_y), shape(blob) {}
  float x, y;
  BlobShape shape;
};

// How well the new blob continues `earlier`: 0 to 1.
inline float match_score(const Blob &earlier, const LinkQuery &query) {
  const float position =
      earlier.previous == nullptr
          ? 1.0F
          : position_factor(earlier.predicted_x - query.x, earlier.predicted_y - query.y);
  return shape_score(position, static_cast<float>(earlier.pixel_count),
                     static_cast<float>(earlier.width), static_cast<float>(earlier.height),
                     query.shape);
}

// No match with a blob of `count` pixels, of which `inverse` is the inverse, scores higher.
inline float highest_score(float count, float inverse) {
  // Above this the ratio of neighbouring counts rounds too near to 1 to tell equal ones apart.
  constexpr float kExactCounts = 4194304.0F;
  return count <= kExactCounts ? product_with_inverse(count, inverse) : 1.0F;
}

// Collects the links that one new blob takes, each better than the one before, and writes them.
class LinkTaker {
 public:
  explicit LinkTaker(Blob *blob) : blob_(blob) {}
  bool wants(const Blob &earlier, float score) const {
    return score > best_ && score > earlier.successor_score;
  }
  void take(Blob *earlier, float score);
  void finish();

 private:
  Blob *blob_;
  float best_ = 0.0F;
  Blob *last_ = nullptr;
  Blob *last_followed_ = nullptr;  // the last one taken that had a previous itself
};

class CrowdLinker;

// Links frame after frame; keeps its working memory.
class BlobLinker {
 public:
  BlobLinker();
  ~BlobLinker();
  BlobLinker(const BlobLinker &) = delete;
  BlobLinker &operator=(const BlobLinker &) = delete;

  // Links each blob of `current`, in order, to one of `earlier`. A link is taken when its score is
  // above the blob's best so far and above the score by which an earlier blob of this frame took
  // the same one; every link taken on the way leaves its mark on the blob of the frame before.
  void link(BlobSpan earlier, BlobSpan current);

 private:
  std::unique_ptr<CrowdLinker> crowd_;  // for many blobs; made when they first come
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_BLOB_LINKS_H_
