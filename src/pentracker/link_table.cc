#include "pentracker/link_table.h"

#include <algorithm>
#include <limits>

namespace nox::pentracker {

namespace {

// A little less than what a pixel of distance takes from the position factor.
constexpr float kFading = kLossPerPixel * (1.0F - 1.0F / 64.0F);

}  // namespace

void LinkTable::fill(BlobSpan earlier) {
  count = earlier.count;
  const auto rows = static_cast<std::size_t>(count);
  for (auto *column : {&x, &y, &fading, &pixels, &width, &height, &inverse_pixels, &inverse_width,
                       &inverse_height, &taken}) {
    column->assign(rows + kLinkTablePadding, 0.0F);
  }
  for (std::size_t i = 0; i < rows; ++i) {
    const Blob &blob = earlier.blobs[i];
    const BlobShape shape(blob);
    x[i] = blob.predicted_x;
    y[i] = blob.predicted_y;
    fading[i] = blob.previous == nullptr ? 0.0F : kFading;
    pixels[i] = shape.count;
    width[i] = shape.width;
    height[i] = shape.height;
    inverse_pixels[i] = shape.inverse_count;
    inverse_width[i] = shape.inverse_width;
    inverse_height[i] = shape.inverse_height;
  }
  std::fill(taken.begin() + count, taken.end(), std::numeric_limits<float>::infinity());
}

}  // namespace nox::pentracker
