// The kernel for elements of any shape.
#ifndef MASKS_MORPHOLOGY_GENERAL_H_
#define MASKS_MORPHOLOGY_GENERAL_H_

#include <cstdint>

#include "masks/morphology_pass.h"
#include "masks/morphology_plan.h"

namespace nox::masks {

// One pass with an element whose column anchor_x is the pixel's own; the plan has at least one row.
void erode_general(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x);
void dilate_general(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x);

// Dilates too, but clears in dst what the dilation sets, and leaves the rest of dst.
void suppress_general(const MorphologyPass &pass, const ElementPlan &plan, std::int32_t anchor_x);

}  // namespace nox::masks

#endif  // MASKS_MORPHOLOGY_GENERAL_H_
