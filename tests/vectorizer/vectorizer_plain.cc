#include "vectorizer/vectorizer_plain.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "vectorizer/frame_overlay_plain.h"

namespace nox::test {

namespace {

using Plane = std::vector<std::uint8_t>;

constexpr int kGx[3][3] = {{1, 0, -1}, {2, 0, -2}, {1, 0, -1}};
constexpr int kGy[3][3] = {{1, 2, 1}, {0, 0, 0}, {-1, -2, -1}};

std::size_t luma_size(const NoxVideoFrame &in) {
  return static_cast<std::size_t>(in.strides[0]) * static_cast<std::size_t>(in.height);
}

std::size_t luma_at(const NoxVideoFrame &in, std::int32_t x, std::int32_t y) {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(in.strides[0]) +
         static_cast<std::size_t>(x);
}

Plane gradient(const NoxVideoFrame &in, const int (&kernel)[3][3]) {
  Plane gradient(luma_size(in));
  for (std::int32_t y = 0; y < in.height - 3; ++y) {
    for (std::int32_t x = 0; x < in.width - 3; ++x) {
      std::int32_t sum = 0;
      for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 3; ++i) {
          sum += in.planes[0][luma_at(in, x + i, y + j)] * kernel[j][i];
        }
      }
      const auto value = static_cast<std::int16_t>(5 * sum);
      gradient[luma_at(in, x + 1, y + 1)] =
          static_cast<std::uint8_t>(std::min(std::abs(int{value}), 255));
    }
  }
  return gradient;
}

Plane magnitude(const NoxVideoFrame &in) {
  const Plane gx = gradient(in, kGx), gy = gradient(in, kGy);
  Plane magnitude(luma_size(in));
  for (std::int32_t y = 0; y < in.height; ++y) {
    for (std::int32_t x = 0; x < in.width; ++x) {
      const int a = gx[luma_at(in, x, y)], b = gy[luma_at(in, x, y)];
      const auto root = static_cast<int>(std::sqrt(static_cast<float>(a * a + b * b)));
      magnitude[luma_at(in, x, y)] = static_cast<std::uint8_t>(std::min(root, 255));
    }
  }
  return magnitude;
}

void fill_plane(const NoxVideoFrame &out, int p, std::uint8_t value) {
  for (std::int32_t y = 0; y < out.plane_heights[p]; ++y) {
    const bool last = y + 1 == out.plane_heights[p];
    std::uint8_t *row = out.planes[p] + static_cast<std::ptrdiff_t>(y) * out.strides[p];
    std::fill_n(row, last ? out.plane_widths[p] : out.strides[p], value);
  }
}

}  // namespace

void PlainHistory::clear() {
  next_ = 0;
  masks_.clear();
  counts_.clear();
}

void PlainHistory::add(const PlainMask &mask) {
  counts_.resize(mask.bits().size());
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    counts_[i] = static_cast<std::uint16_t>(counts_[i] + mask.bits()[i]);
  }
  if (masks_.size() < capacity_) {
    masks_.push_back(mask);
    return;
  }
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    counts_[i] = static_cast<std::uint16_t>(counts_[i] - masks_[next_].bits()[i]);
  }
  masks_[next_] = mask;
  next_ = (next_ + 1) % capacity_;
}

PlainMask PlainHistory::in_all() const {
  return where_count_is_at_least(capacity_);
}

PlainMask PlainHistory::in_any() const {
  return where_count_is_at_least(1);
}

PlainMask PlainHistory::where_count_is_at_least(std::size_t least) const {
  PlainMask answer(masks_.front().width(), masks_.front().height());
  std::size_t i = 0;
  for (std::int32_t y = 0; y < answer.height(); ++y) {
    for (std::int32_t x = 0; x < answer.stored(); ++x) answer.set(x, y, counts_[i++] >= least);
  }
  return answer;
}

// The bits from the width to the next multiple of 16 come from what follows the row.
PlainMask edges_plain(const NoxVideoFrame &in) {
  const Plane strength = magnitude(in);
  PlainMask edges(in.width, in.height);
  for (std::int32_t y = 0; y < in.height; ++y) {
    for (std::int32_t x = 0; x < (in.width + 15) / 16 * 16; ++x) {
      const std::size_t at = luma_at(in, x, y);
      edges.set(x, y, at < strength.size() && strength[at] > 128);
    }
  }
  return edges;
}

PlainMask close_plain(const PlainMask &mask) {
  PlainMask dilated(mask.width(), mask.height()), closed(mask.width(), mask.height());
  for (std::int32_t y = 0; y < mask.height(); ++y) {
    for (std::int32_t x = 0; x < mask.stored(); ++x) {
      dilated.set(x, y,
                  mask.get(x, y) || mask.get(x - 1, y) || mask.get(x + 1, y) ||
                      mask.get(x, y - 1) || mask.get(x, y + 1));
    }
  }
  for (std::int32_t y = 0; y < mask.height(); ++y) {
    for (std::int32_t x = 0; x < mask.stored(); ++x) {
      closed.set(x, y,
                 dilated.get(x, y) && dilated.get(x - 1, y) && dilated.get(x + 1, y) &&
                     dilated.get(x, y - 1) && dilated.get(x, y + 1));
    }
  }
  return closed;
}

void PlainVectorizer::process(const NoxVideoFrame &in, const NoxVideoFrame &out) {
  if (in.width != width_ || in.height != height_) {
    short_.clear();
    long_.clear();
    width_ = in.width;
    height_ = in.height;
  }
  short_.add(close_plain(edges_plain(in)));
  long_.add(short_.in_all());
  const PlainMask shown = long_.in_any();

  // A copy of the picture with an alpha plane of the luma's stride.
  NoxVideoFrame local = in;
  local.format = 0x180;
  local.n_planes = 4;
  Plane copies[4];
  for (int p = 0; p < 3; ++p) {
    const std::int32_t rows = in.plane_heights[p];
    const std::size_t size =
        rows == 0 ? 0
                  : static_cast<std::size_t>(in.strides[p]) * static_cast<std::size_t>(rows - 1) +
                        static_cast<std::size_t>(in.plane_widths[p]);
    copies[p].assign(in.planes[p], in.planes[p] + size);
    local.planes[p] = copies[p].data();
  }
  copies[3].assign(luma_size(in), 16);
  local.planes[3] = copies[3].data();
  local.strides[3] = in.strides[0];
  local.plane_widths[3] = in.strides[0];
  local.plane_heights[3] = in.height;
  for (std::int32_t y = 0; y < in.height; ++y) {
    for (std::int32_t x = 0; x < in.width; ++x) {
      if (shown.get(x, y)) copies[3][luma_at(in, x, y)] = 64;
    }
  }

  fill_plane(out, 0, 255);
  fill_plane(out, 1, 128);
  fill_plane(out, 2, 128);
  video_frame_overlay_plain(out, local, 0, 0);
}

}  // namespace nox::test
