// Filters the planes of one size: two vector passes with the rows between them kept in the nearest
// cache.
#ifndef SCALER_PLANE_FILTER_H_
#define SCALER_PLANE_FILTER_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "scaler/aligned_bytes.h"
#include "scaler/filter_coefficients.h"
#include "scaler/filter_kernels.h"
#include "scaler/filter_plan.h"
#include "scaler/filter_positions.h"
#include "scaler/frame_planes.h"
#include "scaler/reduced_rows.h"

namespace nox::scaler {

struct PlaneFilter {
  FilterRows filter_rows;
  MergeRows merge_rows;
  ColumnPlan columns;
  std::vector<RowStep> rows;
  std::int32_t last_row;    // of the picture that is filtered
  std::size_t pair_stride;  // columns from one row of pairs to the next
  AlignedBytes pairs;       // the rows of pairs still wanted, 4 bytes to a column
};

// Nothing where the vector filters cannot serve these positions.
std::optional<PlaneFilter> make_plane_filter(const FilterCoefficients &coefficients,
                                             const AxisPositions &columns,
                                             const AxisPositions &rows);

// Fills dst from src, one output sample for each pair of a column and a row.
void run_plane_filter(PlaneFilter &filter, ReducedRows &src, const DestinationPlane &dst);

}  // namespace nox::scaler

#endif  // SCALER_PLANE_FILTER_H_
