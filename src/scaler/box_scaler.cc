#include <algorithm>

#include "scaler/box_kernels.h"
#include "scaler/frame_planes.h"
#include "scaler/plane_prefetch.h"
#include "scaler/scaler.h"

namespace {

using nox::scaler::BoxKernels;
using nox::scaler::DestinationPlane;
using nox::scaler::PlanePrefetch;
using nox::scaler::ReduceRow;
using nox::scaler::SourcePlane;

std::int32_t halve_id() {
  return 0;
}

// The products are compared as 32-bit words, wrap included.
int halve_supports(ScalerSize in, ScalerSize out) {
  if (in.width == out.width && in.height == out.height) return 1;
  if (out.width <= 0 || in.width % out.width != 0 || out.width % 16 != 0) return 0;
  const auto word = [](std::int32_t size) { return static_cast<std::uint32_t>(size); };
  return word(in.width) * word(out.height) == word(out.width) * word(in.height);
}

// The vector row function for a factor, or null.
ReduceRow row_function(const BoxKernels &kernels, std::int32_t factor) {
  for (std::int32_t h = 0; h <= nox::scaler::kMaxHalvings; ++h) {
    if (factor == 1 << h) return kernels.reduce_row[h];
  }
  return nullptr;
}

void reduce_plane(const BoxKernels &kernels, std::int32_t factor, const SourcePlane &src,
                  const DestinationPlane &dst) {
  const ReduceRow reduce_row = row_function(kernels, factor);
  const auto width = static_cast<std::size_t>(dst.size.width);
  PlanePrefetch prefetch(src);
  for (std::int32_t y = 0; y < dst.size.height; ++y) {
    prefetch.advance(factor);
    prefetch.catch_up();
    const std::uint8_t *from = src.row(y * factor);
    if (reduce_row != nullptr) {
      reduce_row(from, src.stride, width, dst.row(y));
    } else {
      nox::scaler::reduce_row_by(factor, from, src.stride, width, dst.row(y));
    }
  }
}

int halve_process(Scaler * /*scaler*/, const NoxVideoFrame *src, NoxVideoFrame *dst) {
  if (dst->width <= 0) return 1;
  // One factor for all planes: chroma planes shrink as much as luma, whatever their rounding.
  const std::int32_t factor = src->width / dst->width;
  if (factor <= 0) return 1;
  const BoxKernels &kernels = nox::scaler::box_kernels();
  for (std::int32_t p = 0; p < nox::scaler::plane_count(*src); ++p) {
    const SourcePlane from = nox::scaler::source_plane(*src, p);
    const DestinationPlane to = nox::scaler::destination_plane(*dst, p);
    if (nox::scaler::holds(from, to.size, factor) && to.data != nullptr) {
      reduce_plane(kernels, factor, from, to);
    }
  }
  return 1;
}

}  // namespace

const ScalerOps halve_scaler = {
    .id = halve_id,
    .init = nullptr,
    .process = halve_process,
    .supports = halve_supports,
    .reinit = nullptr,
    .destroy = nullptr,
    .taps = nullptr,
};
