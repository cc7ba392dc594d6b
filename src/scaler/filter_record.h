// What both polyphase scalers keep behind Scaler::priv, and what they share.
#ifndef SCALER_FILTER_RECORD_H_
#define SCALER_FILTER_RECORD_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "scaler/aligned_bytes.h"
#include "scaler/box_kernels.h"
#include "scaler/filter_coefficients.h"
#include "scaler/filter_positions.h"
#include "scaler/plane_filter.h"
#include "scaler/scaler.h"

namespace nox::scaler {

// What a scaler chose for a pair of sizes.
struct FilterChoice {
  double ratio;  // input over output, after the halvings
  std::int32_t taps;
  KernelFunction kernel;
  std::int32_t halvings;
};

// Input samples per output sample: the larger ratio of the two axes, or the smaller one as soon as
// either axis is enlarged.
double scale_factor(ScalerSize in, ScalerSize out);

struct FilterRecord {
  FilterCoefficients coefficients;
  std::int32_t halvings;     // box reductions by two in front of the filter, made in one step
  PositionTables positions;  // in the reduced picture
  ReduceRow row_kernel;      // makes a row of the reduced picture
  AlignedBytes half_buffer;  // the reduced rows in use, 32-byte aligned
  std::size_t half_stride;
  std::optional<PlaneFilter> full_filter;  // none where the look-up filter has to serve
  std::optional<PlaneFilter> half_filter;
  std::vector<std::int32_t> scratch;  // of the look-up filter, empty where nobody needs it
};

// Builds the private record for the sizes in the Scaler. Returns 1, or 0 without memory for it.
int filter_record_init(Scaler *scaler, const FilterChoice &choice);

// Rebuilds everything in the record that the Scaler has, for the sizes that are in it now. Returns
// 1, or 0 when there is no record or no memory, and then nothing has changed.
int filter_record_reinit(Scaler *scaler, const FilterChoice &choice);

// Releases the record; does nothing without one.
void filter_record_destroy(Scaler *scaler);

// Filters every plane of src into dst. Returns 1.
int filter_record_process(Scaler *scaler, const NoxVideoFrame *src, NoxVideoFrame *dst);

}  // namespace nox::scaler

#endif  // SCALER_FILTER_RECORD_H_
