#include "scaler/scaler.h"

#include <algorithm>

namespace {

std::int32_t null_id() {
  return -1;
}

int null_init(Scaler * /*scaler*/) {
  return 0;
}

int null_process(Scaler * /*scaler*/, const NoxVideoFrame * /*src*/, NoxVideoFrame * /*dst*/) {
  return 0;
}

struct Candidate {
  const ScalerOps *ops;
  double largest_ratio;  // of input over output, on the axis where it is larger
};

// In the order of trying. The halves of a float's last bit let a ratio through that is exact but
// for rounding.
constexpr Candidate kCandidates[] = {
    {&halve_scaler, 2.0 + 0x1p-23},
    {&tiled_scaler, 99999.0},
    {&separable_scaler, 99999.0},
};

const ScalerOps *choose(ScalerSize in, ScalerSize out) {
  if (in.width <= 0 || in.height <= 0 || out.width <= 0 || out.height <= 0) return &null_scaler;
  if (((out.width | out.height) & 1) != 0) return &null_scaler;
  const double ratio = std::max(static_cast<double>(in.width) / out.width,
                                static_cast<double>(in.height) / out.height);
  for (const Candidate &candidate : kCandidates) {
    if (ratio <= candidate.largest_ratio && candidate.ops->supports(in, out)) return candidate.ops;
  }
  return &null_scaler;
}

}  // namespace

const ScalerOps null_scaler = {
    .id = null_id,
    .init = null_init,
    .process = null_process,
    .supports = nullptr,
    .reinit = nullptr,
    .destroy = nullptr,
    .taps = nullptr,
};

int scaler_reset(Scaler *scaler) {
  *scaler = {};
  return 0;
}

int scaler_select(Scaler *scaler, ScalerSize in, ScalerSize out) {
  scaler_destroy(scaler);
  *scaler = {.ops = choose(in, out),
             .in_width = in.width,
             .in_height = in.height,
             .out_width = out.width,
             .out_height = out.height,
             .priv = nullptr};
  if (scaler->ops->init == nullptr) return 1;
  return scaler->ops->init(scaler);
}

void scaler_process(Scaler *scaler, const NoxVideoFrame *src, NoxVideoFrame *dst) {
  scaler->ops->process(scaler, src, dst);
}

void scaler_destroy(Scaler *scaler) {
  if (scaler->ops != nullptr && scaler->ops->destroy != nullptr) scaler->ops->destroy(scaler);
}
