#include "vectorizer/picture_layer.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "vectorizer/drawing_kernels.h"
#include "vectorizer/frame_overlay.h"
#include "video/plane_memory.h"

namespace nox::vectorizer {

namespace {

using video::plane_extent;
using video::plane_sample;
using video::PlaneExtent;

constexpr int kAlphaPlane = 3;

// Columns of plane `p` that a drawing of `in` takes.
std::int32_t drawn_columns(const NoxVideoFrame &in, const NoxVideoFrame &out, int p) {
  const std::int32_t width = std::min(in.width, out.width);
  return p == 0 ? width : width / 2 + width % 2;
}

bool rows_overlap(const NoxVideoFrame &out, int p, std::int32_t columns) {
  return std::abs(std::int64_t{out.strides[p]}) < columns;
}

bool planes_overlap(const NoxVideoFrame &a, int p, const NoxVideoFrame &b, int q) {
  const PlaneExtent first = plane_extent(a, p), second = plane_extent(b, q);
  if (first.begin == first.end || second.begin == second.end) return false;
  const auto first_address = reinterpret_cast<std::intptr_t>(a.planes[p]);
  const auto second_address = reinterpret_cast<std::intptr_t>(b.planes[q]);
  return first_address + first.begin < second_address + second.end &&
         second_address + second.begin < first_address + first.end;
}

bool same_plane(const NoxVideoFrame &a, int p, const NoxVideoFrame &b, int q) {
  return p == q && a.planes[p] == b.planes[q] && a.strides[p] == b.strides[q];
}

template <typename Row>
void for_each_row(const NoxVideoFrame &frame, int p, Row row) {
  if (frame.planes[p] == nullptr) return;
  for (std::int32_t y = 0; y < frame.plane_heights[p]; ++y) {
    row(plane_sample(frame, p, 0, y), static_cast<std::size_t>(frame.plane_widths[p]));
  }
}

// The samples of a plane, without the padding of its rows.
std::vector<std::uint8_t> samples_of(const NoxVideoFrame &frame, int p) {
  std::vector<std::uint8_t> samples;
  for_each_row(frame, p, [&samples](const std::uint8_t *row, std::size_t width) {
    samples.insert(samples.end(), row, row + width);
  });
  return samples;
}

void put_back(const NoxVideoFrame &frame, int p, const std::vector<std::uint8_t> &samples) {
  const std::uint8_t *next = samples.data();
  for_each_row(frame, p, [&next](std::uint8_t *row, std::size_t width) {
    std::copy_n(next, width, row);
    next += width;
  });
}

// The samples last, since they may lie in the padding of a plane that is filled after theirs.
void fill_with_page(const NoxVideoFrame &out) {
  for (int p : {0, 1, 2}) {
    const PlaneExtent extent = plane_extent(out, p);
    std::fill(out.planes[p] + extent.begin, out.planes[p] + extent.end, page_value(p));
  }
  for (int p : {0, 1, 2}) {
    for_each_row(out, p, [p](std::uint8_t *row, std::size_t width) {
      std::memset(row, page_value(p), width);
    });
  }
}

}  // namespace

bool rows_are_apart(const NoxVideoFrame &in, const NoxVideoFrame &out) {
  for (int p : {0, 1, 2}) {
    if (rows_overlap(out, p, drawn_columns(in, out, p))) return false;
    for (int q : {0, 1, 2}) {
      if (!same_plane(in, q, out, p) && planes_overlap(in, q, out, p)) return false;
    }
    for (int q = p + 1; q <= kAlphaPlane; ++q) {
      if (planes_overlap(out, p, out, q)) return false;
    }
  }
  return true;
}

PictureLayer::PictureLayer(const NoxVideoFrame &in) {
  frame_ = in;
  frame_.format = kNoxFormatA420;
  frame_.n_planes = 4;
  for (int p : {0, 1, 2}) {
    const PlaneExtent extent = plane_extent(in, p);
    planes_[p].assign(in.planes[p] + extent.begin, in.planes[p] + extent.end);
    frame_.planes[p] = planes_[p].data() - extent.begin;
  }
  // Even, for the second alpha of an odd row's last pair.
  const std::int32_t stride = in.width + in.width % 2;
  planes_[kAlphaPlane].assign(
      static_cast<std::size_t>(stride) * static_cast<std::size_t>(in.height), kAlphaWash);
  frame_.planes[kAlphaPlane] = planes_[kAlphaPlane].data();
  frame_.strides[kAlphaPlane] = frame_.plane_widths[kAlphaPlane] = stride;
  frame_.plane_heights[kAlphaPlane] = in.height;
}

void PictureLayer::set_alpha(std::int32_t y, const std::uint64_t *bits) {
  std::uint8_t *alpha = plane_sample(frame_, kAlphaPlane, 0, y);
  for (std::int32_t x = 0; x < frame_.width; ++x) {
    if ((bits[x / 64] >> (x % 64) & 1) != 0) alpha[x] = kAlphaEdge;
  }
}

void PictureLayer::draw_onto(const NoxVideoFrame &out) const {
  const std::vector<std::uint8_t> alpha = samples_of(out, kAlphaPlane);
  fill_with_page(out);
  video_frame_overlay(&out, &frame_, 0, 0);
  put_back(out, kAlphaPlane, alpha);
}

}  // namespace nox::vectorizer
