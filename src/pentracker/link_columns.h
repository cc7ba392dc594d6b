// Earlier blobs as columns of numbers, for looks at many of them at a time.
#ifndef PENTRACKER_LINK_COLUMNS_H_
#define PENTRACKER_LINK_COLUMNS_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "pentracker/at.h"
#include "pentracker/blob_links.h"

namespace nox::pentracker {

// A score that none surpasses: of a successor that no other can take the place of.
inline constexpr float kClosed = std::numeric_limits<float>::infinity();

struct LinkColumns {
  // Rows behind the last one, which match nothing: a vector may reach over the end.
  static constexpr std::int32_t kPadding = 64;

  std::vector<std::int32_t> index;  // of the blob in its list; behind the last row, beyond all
  std::vector<float> x, y;          // where the blob is expected
  std::vector<float> least;  // the position factor of a distant blob; 1 without an expected place
  std::vector<float> count, width, height;
  std::vector<float> inverse_count, inverse_width, inverse_height;
  std::vector<float> taken;  // the score of the successor, kClosed if none can be higher
  std::int32_t size = 0;

  std::array<std::vector<float> *, 10> columns() {
    return {&x,      &y,     &least,         &count,         &width,
            &height, &taken, &inverse_count, &inverse_width, &inverse_height};
  }

  // Makes all columns `rows` long; each row is to be put then.
  void resize(std::int32_t rows) {
    size = rows;
    index.resize(at(rows + kPadding));
    std::fill(index.begin() + rows, index.end(), std::numeric_limits<std::int32_t>::max());
    for (auto *column : columns()) column->resize(at(rows + kPadding));
    std::fill(taken.begin() + rows, taken.end(), kClosed);
  }

  void put(std::int32_t row, std::int32_t blob_index, const Blob &blob) {
    const std::size_t i = at(row);
    const BlobShape shape(blob);
    index[i] = blob_index;
    x[i] = blob.predicted_x;
    y[i] = blob.predicted_y;
    least[i] = blob.previous == nullptr ? 1.0F : kFarPosition;
    count[i] = shape.count;
    width[i] = shape.width;
    height[i] = shape.height;
    inverse_count[i] = shape.inverse_count;
    inverse_width[i] = shape.inverse_width;
    inverse_height[i] = shape.inverse_height;
    set_taken(row, blob.successor_score);
  }

  void set_taken(std::int32_t row, float score) {
    const std::size_t i = at(row);
    taken[i] = score >= highest_score(count[i], inverse_count[i]) ? kClosed : score;
  }

  float score(std::int32_t row, const LinkQuery &query) const {
    const std::size_t i = at(row);
    const float position =
        least[i] == 1.0F ? 1.0F : position_factor(x[i] - query.x, y[i] - query.y);
    return shape_score(position, count[i], width[i], height[i], query.shape);
  }
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_COLUMNS_H_
