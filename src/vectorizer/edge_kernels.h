// Edges of a picture and their closing, in bands of rows.
#ifndef VECTORIZER_EDGE_KERNELS_H_
#define VECTORIZER_EDGE_KERNELS_H_

#include <cstddef>
#include <cstdint>

#include "vectorizer/bit_rows.h"

namespace nox::vectorizer {

// Words before the first word of a row, and behind its last one, that close_edges reads: they are
// 0.
inline constexpr std::size_t kGuardWords = kBlockWords;

// Marks where the Sobel gradient of an 8-bit picture is an edge: row r of `edges` tells of the
// picture's row r + 1 below `above`, its bit k of column k + 1, for the width - 3 columns 1 to
// width - 3. The column width - 2 has a gradient too; that it is left out is deliberate.
//
// With s_x and s_y the plain sums of the two Sobel kernels (weights 1 2 1), a pixel is an edge when
// s_x * s_x + s_y * s_y >= 666: the gradient 5 |s| clamped to 255 in each direction, and their
// length above 128.
//
// Bits of `edges` behind these columns are 0 before and stay so.
//
// `above` is the first sample of a row, with edges.count + 2 rows from there, `stride` bytes apart,
// of which `readable` bytes from `above` on may be read. width >= 4.
void find_edges(const std::uint8_t *above, std::ptrdiff_t stride, std::int32_t width,
                std::ptrdiff_t readable, const BitRows &edges);

// Closes edges (dilation, then erosion) with the cross of a pixel and its four neighbours.
//
// Row r of `closed` is row r + 2 of `edges`, which has two rows more above and below. Bit k of a
// row of `edges` is column k + 1, as find_edges leaves it; bit k of `closed` is column k. `dilated`
// is scratch with closed.count + 2 rows. The kGuardWords words before and behind each row of
// `edges` and `dilated` are 0.
void close_edges(const BitRows &edges, const BitRows &dilated, const BitRows &closed);

}  // namespace nox::vectorizer

#endif  // VECTORIZER_EDGE_KERNELS_H_
