#include "noxvisuals/whole_frame.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "video/nox_video_gst.h"

namespace nox::noxvisuals {

namespace {

using video::plane_extent;
using video::PlaneExtent;

bool within(const PlaneExtent &inner, const PlaneExtent &outer) {
  return inner.begin >= outer.begin && inner.end <= outer.end;
}

// The mapped memory that plane `p` lies in. With a GstVideoMeta each plane is mapped on its own;
// one that brings its own way of mapping may tell nothing of the memory, and is trusted.
PlaneExtent mapped_memory(const GstVideoFrame &mapped, const NoxVideoFrame &frame, int p) {
  const GstMapInfo &map = mapped.map[mapped.meta != nullptr ? p : 0];
  const auto address = [](const void *byte) { return reinterpret_cast<std::intptr_t>(byte); };
  const std::int64_t begin = address(map.data) - address(frame.planes[p]);
  const std::int64_t end = begin + static_cast<std::int64_t>(map.size);
  constexpr std::int64_t kAnywhere = std::numeric_limits<std::int64_t>::max() / 2;
  return begin > 0 || end < 0 ? PlaneExtent{-kAnywhere, kAnywhere} : PlaneExtent{begin, end};
}

// From the first sample of a plane up to the last one, in the order of memory.
PlaneExtent samples_extent(const NoxVideoFrame &frame, int p) {
  const std::int64_t last = std::int64_t{frame.strides[p]} * (frame.plane_heights[p] - 1);
  return {std::min<std::int64_t>(last, 0), std::max<std::int64_t>(last, 0) + frame.plane_widths[p]};
}

}  // namespace

WholeFrame::WholeFrame(const GstVideoFrame &mapped, Touches touches) {
  nox_video_frame_from_gst_video_frame(&mapped_, &mapped);
  frame_ = mapped_;
  bool whole = true;
  for (int p = 0; p < frame_.n_planes; ++p) {
    memory_[p] = mapped_memory(mapped, mapped_, p);
    const PlaneExtent touched =
        touches == Touches::kSamples ? samples_extent(mapped_, p) : plane_extent(mapped_, p);
    whole = whole && within(touched, memory_[p]);
  }
  if (whole) return;
  for (int p = 0; p < frame_.n_planes; ++p) copy_plane(p);
}

// Calls visit(mapped row, the frame's row, bytes) for what the mapped memory holds of the first
// `columns` bytes of each row.
template <typename Visit>
void WholeFrame::for_each_row(int p, std::int32_t columns, Visit visit) const {
  for (std::int32_t y = 0; y < frame_.plane_heights[p]; ++y) {
    const std::int64_t at = std::int64_t{mapped_.strides[p]} * y;
    if (at < memory_[p].begin || at >= memory_[p].end) continue;
    visit(mapped_.planes[p] + at, video::plane_sample(frame_, p, 0, y),
          static_cast<std::size_t>(std::min<std::int64_t>(memory_[p].end - at, columns)));
  }
}

void WholeFrame::copy_plane(int p) {
  // The padding is copied too, but for strides that lead out of the memory: they tell of none.
  std::int64_t stride = mapped_.plane_widths[p];
  if (within(samples_extent(mapped_, p), memory_[p])) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t padded = std::abs(std::int64_t{mapped_.strides[p]});
    stride = std::max(stride, std::min({padded, memory_[p].end - memory_[p].begin, kLargest}));
  }
  copies_[p].resize(static_cast<std::size_t>(stride) *
                    static_cast<std::size_t>(mapped_.plane_heights[p]));
  frame_.planes[p] = copies_[p].data();
  frame_.strides[p] = static_cast<std::int32_t>(stride);
  for_each_row(p, frame_.strides[p],
               [](const std::uint8_t *mapped, std::uint8_t *copy, std::size_t bytes) {
                 std::memcpy(copy, mapped, bytes);
               });
}

void WholeFrame::write_back() const {
  const auto write = [](std::uint8_t *mapped, const std::uint8_t *copy, std::size_t bytes) {
    std::memcpy(mapped, copy, bytes);
  };
  if (copies_[0].empty()) return;
  for (int p = 0; p < frame_.n_planes; ++p) for_each_row(p, frame_.strides[p], write);
  for (int p = 0; p < frame_.n_planes; ++p) for_each_row(p, frame_.plane_widths[p], write);
}

}  // namespace nox::noxvisuals
