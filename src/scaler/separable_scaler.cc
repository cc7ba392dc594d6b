#include <algorithm>

#include "scaler/filter_coefficients.h"
#include "scaler/filter_record.h"
#include "scaler/scaler.h"

namespace {

using nox::scaler::FilterChoice;

constexpr double kTapsPerRatio = 4.0;  // the kernels reach two (stretched) samples to either side

std::int32_t separable_id() {
  return 1;
}

FilterChoice choose(const Scaler &scaler) {
  const double ratio = nox::scaler::scale_factor({scaler.in_width, scaler.in_height},
                                                 {scaler.out_width, scaler.out_height});
  if (ratio < 1.0) return {ratio, 4, scaler_kernel_cubic, 0};
  const double taps = std::min<double>(ratio * kTapsPerRatio, nox::scaler::kMaxTaps);
  return {ratio, static_cast<std::int32_t>(taps), scaler_kernel_lanczos2, 0};
}

int separable_init(Scaler *scaler) {
  return nox::scaler::filter_record_init(scaler, choose(*scaler));
}

int separable_reinit(Scaler *scaler) {
  return nox::scaler::filter_record_reinit(scaler, choose(*scaler));
}

int separable_supports(ScalerSize /*in*/, ScalerSize out) {
  return out.width % 8 == 0;
}

}  // namespace

const ScalerOps separable_scaler = {
    .id = separable_id,
    .init = separable_init,
    .process = nox::scaler::filter_record_process,
    .supports = separable_supports,
    .reinit = separable_reinit,
    .destroy = nox::scaler::filter_record_destroy,
    .taps = nullptr,
};
