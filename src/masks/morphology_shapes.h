// Kernels for the elements that the cores use, each compiled for its shape.
#ifndef MASKS_MORPHOLOGY_SHAPES_H_
#define MASKS_MORPHOLOGY_SHAPES_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "masks/morphology_pass.h"

namespace nox::masks {

// A shape without empty rows whose every row is one run of columns; bit c of a row is column c.
template <std::size_t kHeight>
struct RunShape {
  std::int32_t width;
  std::array<std::uint32_t, kHeight> rows;
};

inline constexpr RunShape<3> kBox3 = {3, {0b111, 0b111, 0b111}};
inline constexpr RunShape<3> kCross3 = {3, {0b010, 0b111, 0b010}};
inline constexpr RunShape<15> kDisc15 = {
    15,
    {0x03E0, 0x0FF8, 0x1FFC, 0x3FFE, 0x3FFE, 0x7FFF, 0x7FFF, 0x7FFF, 0x7FFF, 0x7FFF, 0x3FFE, 0x3FFE,
     0x1FFC, 0x0FF8, 0x03E0}};

// One pass with the shape, anchored at (width / 2, height / 2).
void erode_box3(const MorphologyPass &pass);
void dilate_box3(const MorphologyPass &pass);
void erode_cross3(const MorphologyPass &pass);
void dilate_cross3(const MorphologyPass &pass);
void erode_disc15(const MorphologyPass &pass);
void dilate_disc15(const MorphologyPass &pass);

}  // namespace nox::masks

#endif  // MASKS_MORPHOLOGY_SHAPES_H_
