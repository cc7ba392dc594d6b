#include "scaler/filter_record.h"

#include <algorithm>
#include <new>

#include "scaler/frame_planes.h"
#include "scaler/indexed_filter.h"
#include "scaler/reduced_rows.h"

namespace nox::scaler {
namespace {

constexpr std::size_t kHalfAlignment = 32;  // of the half buffer and of each line in it

ScalerSize stored_in(const Scaler &scaler) {
  return {scaler.in_width, scaler.in_height};
}

ScalerSize stored_out(const Scaler &scaler) {
  return {scaler.out_width, scaler.out_height};
}

// The picture that the filter sees. Reduced sides are even, so that half of them serves the
// half-size planes; a side may come out as 0.
ScalerSize reduced(ScalerSize size, std::int32_t halvings) {
  if (halvings == 0) return size;
  return {(size.width >> halvings) & ~1, (size.height >> halvings) & ~1};
}

FilterRecord make_record(const Scaler &scaler, const FilterChoice &choice) {
  const ScalerSize in = reduced(stored_in(scaler), choice.halvings);
  const ScalerSize out = stored_out(scaler);
  FilterRecord record = {};
  record.coefficients = make_filter_coefficients(choice.ratio, choice.taps, choice.kernel);
  record.halvings = choice.halvings;
  record.positions = make_position_tables(in, out, choice.taps);
  record.row_kernel = box_kernels().reduce_row[choice.halvings];
  record.half_stride =
      (static_cast<std::size_t>(in.width) + kHalfAlignment - 1) & ~(kHalfAlignment - 1);
  const std::size_t bytes = choice.halvings == 0 ? 0 : kReducedLines * record.half_stride;
  record.half_buffer = make_aligned_bytes(kHalfAlignment, bytes);
  const PositionTables &all = record.positions;
  record.full_filter = make_plane_filter(record.coefficients, all.columns, all.rows);
  record.half_filter = make_plane_filter(record.coefficients, all.half_columns, all.half_rows);
  const bool vectors = record.full_filter && record.half_filter;
  record.scratch.resize(vectors ? 0 : indexed_filter_words(out.width));
  return record;
}

FilterRecord *record_of(const Scaler &scaler) {
  return static_cast<FilterRecord *>(scaler.priv);
}

void filter_plane(FilterRecord *record, bool half, const SourcePlane &src,
                  const DestinationPlane &dst) {
  const PositionTables &all = record->positions;
  const AxisPositions &columns = half ? all.half_columns : all.columns;
  const AxisPositions &rows = half ? all.half_rows : all.rows;
  const std::int32_t factor = 1 << record->halvings;
  if (!holds(src, {columns.in_count, rows.in_count}, factor)) return;
  if (!holds(dst, {columns.out_count, rows.out_count})) return;
  const DestinationPlane to = {dst.data, dst.stride, {columns.out_count, rows.out_count}};
  ReducedRows reduced_rows = {
      .plane = src,
      .reduce_row = record->row_kernel,
      .halvings = record->halvings,
      .width = static_cast<std::size_t>(columns.in_count),
      .lines = record->half_buffer.get(),
      .line_stride = record->half_stride,
      .prefetch = PlanePrefetch(src),
  };
  std::optional<PlaneFilter> &filter = half ? record->half_filter : record->full_filter;
  if (filter) {
    run_plane_filter(*filter, reduced_rows, to);
    return;
  }
  indexed_filter(record->coefficients, columns, rows, reduced_rows, to, record->scratch.data());
}

}  // namespace

double scale_factor(ScalerSize in, ScalerSize out) {
  const double x = static_cast<double>(in.width) / out.width;
  const double y = static_cast<double>(in.height) / out.height;
  const bool enlarged = in.width < out.width || in.height < out.height;
  return enlarged ? std::min(x, y) : std::max(x, y);
}

int filter_record_init(Scaler *scaler, const FilterChoice &choice) {
  scaler->priv = new (std::nothrow) FilterRecord();
  const int built = filter_record_reinit(scaler, choice);
  if (built == 0) filter_record_destroy(scaler);
  return built;
}

int filter_record_reinit(Scaler *scaler, const FilterChoice &choice) try {
  FilterRecord *record = record_of(*scaler);
  if (record == nullptr) return 0;
  *record = make_record(*scaler, choice);  // complete, or as it was
  return 1;
} catch (const std::bad_alloc &) {
  return 0;
}

void filter_record_destroy(Scaler *scaler) {
  delete record_of(*scaler);
  scaler->priv = nullptr;
}

int filter_record_process(Scaler *scaler, const NoxVideoFrame *src, NoxVideoFrame *dst) {
  FilterRecord *record = record_of(*scaler);
  if (record == nullptr) return 1;
  for (std::int32_t p = 0; p < plane_count(*src); ++p) {
    const bool half = p == 1 || p == 2;  // chroma
    filter_plane(record, half, source_plane(*src, p), destination_plane(*dst, p));
  }
  return 1;
}

}  // namespace nox::scaler
