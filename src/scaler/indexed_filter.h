// The filter for any length and any positions, by table look-ups. The lengths and ratios that
// cameras need have kernels of their own; this one takes the rest.
#ifndef SCALER_INDEXED_FILTER_H_
#define SCALER_INDEXED_FILTER_H_

#include <cstddef>
#include <cstdint>

#include "scaler/filter_coefficients.h"
#include "scaler/filter_positions.h"
#include "scaler/frame_planes.h"
#include "scaler/reduced_rows.h"

namespace nox::scaler {

// 32-bit words of scratch memory that indexed_filter needs for a picture of this width.
std::size_t indexed_filter_words(std::int32_t out_width);

// Fills dst from src, one output sample for each pair of a column and a row.
void indexed_filter(const FilterCoefficients &coefficients, const AxisPositions &columns,
                    const AxisPositions &rows, ReducedRows &src, const DestinationPlane &dst,
                    std::int32_t *scratch);

}  // namespace nox::scaler

#endif  // SCALER_INDEXED_FILTER_H_
