// Which elements have kernels of their own.
#ifndef MASKS_KNOWN_SHAPES_H_
#define MASKS_KNOWN_SHAPES_H_

#include <cstdint>
#include <span>

#include "masks/morphology.h"
#include "masks/morphology_pass.h"

namespace nox::masks {

using ShapeKernel = void(const MorphologyPass &);

struct KnownShape {
  std::int32_t width;
  std::span<const std::uint32_t> rows;
  ShapeKernel *erode;
  ShapeKernel *dilate;
};

// Row `row` of an element of 1 to 24 columns; bit c is column c.
std::uint32_t row_pattern(const StructuringElement &element, std::int32_t row);

// The shape with exactly the members of the element, which has 1 to 24 columns, or null.
const KnownShape *find_known_shape(const StructuringElement &element);

}  // namespace nox::masks

#endif  // MASKS_KNOWN_SHAPES_H_
