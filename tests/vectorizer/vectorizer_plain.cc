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

// Scratch planes have the luma's stride.
std::size_t scratch_stride(const NoxVideoFrame &in) {
  return static_cast<std::size_t>(std::max(std::abs(in.strides[0]), in.width));
}

std::size_t scratch_size(const NoxVideoFrame &in) {
  return scratch_stride(in) * static_cast<std::size_t>(in.height);
}

std::size_t scratch_at(const NoxVideoFrame &in, std::int32_t x, std::int32_t y) {
  return static_cast<std::size_t>(y) * scratch_stride(in) + static_cast<std::size_t>(x);
}

Plane gradient(const NoxVideoFrame &in, const int (&kernel)[3][3]) {
  Plane gradient(scratch_size(in));
  for (std::int32_t y = 0; y < in.height - 3; ++y) {
    for (std::int32_t x = 0; x < in.width - 3; ++x) {
      std::int32_t sum = 0;
      for (int j = 0; j < 3; ++j) {
        const std::uint8_t *row = in.planes[0] + std::ptrdiff_t{y + j} * in.strides[0] + x;
        for (int i = 0; i < 3; ++i) sum += row[i] * kernel[j][i];
      }
      const auto value = static_cast<std::int16_t>(5 * sum);
      gradient[scratch_at(in, x + 1, y + 1)] =
          static_cast<std::uint8_t>(std::min(std::abs(int{value}), 255));
    }
  }
  return gradient;
}

Plane magnitude(const NoxVideoFrame &in) {
  const Plane gx = gradient(in, kGx), gy = gradient(in, kGy);
  Plane magnitude(scratch_size(in));
  for (std::int32_t y = 0; y < in.height; ++y) {
    for (std::int32_t x = 0; x < in.width; ++x) {
      const int a = gx[scratch_at(in, x, y)], b = gy[scratch_at(in, x, y)];
      const auto root = static_cast<int>(std::sqrt(static_cast<float>(a * a + b * b)));
      magnitude[scratch_at(in, x, y)] = static_cast<std::uint8_t>(std::min(root, 255));
    }
  }
  return magnitude;
}

Plane copy_plane(const NoxVideoFrame &frame, int p) {
  const PlainExtent extent = extent_plain(frame, p);
  return {frame.planes[p] + extent.first, frame.planes[p] + extent.end};
}

template <typename Visit>
void for_each_sample(const NoxVideoFrame &frame, int p, Visit visit) {
  for (std::int32_t y = 0; y < frame.plane_heights[p]; ++y) {
    for (std::int32_t x = 0; x < frame.plane_widths[p]; ++x) {
      visit(frame.planes[p][std::ptrdiff_t{y} * frame.strides[p] + x]);
    }
  }
}

// All bytes of all planes, and then the samples once more, since a plane's padding may hold samples
// of another one.
void fill_with_page(const NoxVideoFrame &out) {
  constexpr std::uint8_t kPage[3] = {255, 128, 128};
  for (int p = 0; p < 3; ++p) {
    const PlainExtent extent = extent_plain(out, p);
    std::fill(out.planes[p] + extent.first, out.planes[p] + extent.end, kPage[p]);
  }
  for (int p = 0; p < 3; ++p) {
    for_each_sample(out, p, [&](std::uint8_t &sample) { sample = kPage[p]; });
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
  for (std::size_t i = 0; i < counts_.size(); ++i) answer.bits()[i] = counts_[i] >= least ? 1 : 0;
  return answer;
}

// The bits from the width to the next multiple of 16 come from what follows the row.
PlainMask edges_plain(const NoxVideoFrame &in) {
  const Plane strength = magnitude(in);
  PlainMask edges(in.width, in.height);
  for (std::int32_t y = 0; y < in.height; ++y) {
    for (std::int32_t x = 0; x < (in.width + 15) / 16 * 16; ++x) {
      const std::size_t at = scratch_at(in, x, y);
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
    copies[p] = copy_plane(in, p);
    local.planes[p] = copies[p].data() - extent_plain(in, p).first;
  }
  copies[3].assign(scratch_size(in), 16);
  local.planes[3] = copies[3].data();
  local.strides[3] = static_cast<std::int32_t>(scratch_stride(in));
  local.plane_widths[3] = local.strides[3];
  local.plane_heights[3] = in.height;
  for (std::int32_t y = 0; y < in.height; ++y) {
    for (std::int32_t x = 0; x < in.width; ++x) {
      if (shown.get(x, y)) copies[3][scratch_at(in, x, y)] = 64;
    }
  }

  // An alpha plane keeps its samples.
  Plane alpha;
  for_each_sample(out, 3, [&](std::uint8_t sample) { alpha.push_back(sample); });
  fill_with_page(out);
  video_frame_overlay_plain(out, local, 0, 0);
  std::size_t next = 0;
  for_each_sample(out, 3, [&](std::uint8_t &sample) { sample = alpha[next++]; });
}

}  // namespace nox::test
