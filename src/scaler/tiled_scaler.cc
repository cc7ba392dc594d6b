#include <algorithm>

#include "scaler/box_kernels.h"
#include "scaler/filter_record.h"
#include "scaler/scaler.h"

namespace {

using nox::scaler::FilterChoice;
using nox::scaler::FilterRecord;

constexpr double kLargestRatio =
    40.0 + 0x1p-23;                       // a float's last bit above 40, as in the selection
constexpr double kLargestFiltered = 2.5;  // ratios above are halved first
constexpr double kLargestShort = 1.625;   // ratios that 4 taps serve

std::int32_t tiled_id() {
  return 2;
}

FilterChoice choose(const Scaler &scaler) {
  FilterChoice choice = {};
  choice.ratio = nox::scaler::scale_factor({scaler.in_width, scaler.in_height},
                                           {scaler.out_width, scaler.out_height});
  while (choice.ratio > kLargestFiltered && choice.halvings < nox::scaler::kMaxHalvings) {
    choice.ratio *= 0.5;
    ++choice.halvings;
  }
  // Behind a box reduction the softer kernel follows: the box has let some aliases through.
  const bool lanczos = choice.ratio >= 1.0 && choice.halvings == 0;
  choice.kernel = lanczos ? scaler_kernel_lanczos2 : scaler_kernel_cubic;
  choice.taps = choice.ratio <= kLargestShort ? 4 : 8;
  return choice;
}

int tiled_init(Scaler *scaler) {
  return nox::scaler::filter_record_init(scaler, choose(*scaler));
}

int tiled_reinit(Scaler *scaler) {
  return nox::scaler::filter_record_reinit(scaler, choose(*scaler));
}

int tiled_supports(ScalerSize in, ScalerSize out) {
  if (out.width % 8 != 0) return 0;
  if (out.width < in.width && out.height > in.height) return 0;
  if (out.width > in.width && out.height < in.height) return 0;
  return std::max(static_cast<double>(in.width) / out.width,
                  static_cast<double>(in.height) / out.height) <= kLargestRatio;
}

std::int32_t tiled_taps(Scaler *scaler) {
  const auto *record = static_cast<const FilterRecord *>(scaler->priv);
  return record == nullptr ? 0 : record->coefficients.taps;
}

}  // namespace

const ScalerOps tiled_scaler = {
    .id = tiled_id,
    .init = tiled_init,
    .process = nox::scaler::filter_record_process,
    .supports = tiled_supports,
    .reinit = tiled_reinit,
    .destroy = nox::scaler::filter_record_destroy,
    .taps = tiled_taps,
};
