// Rows of luma, made darker.
#ifndef NOX_VISUALS_MASKS_DARKENING_KERNELS_H_
#define NOX_VISUALS_MASKS_DARKENING_KERNELS_H_

#include <cstddef>
#include <cstdint>

namespace nox::app::masks {

// Takes `darker` from each of the `samples`; what would be less than `black` becomes `black`.
void darken_row(std::uint8_t *row, std::size_t samples, std::uint8_t darker, std::uint8_t black);

}  // namespace nox::app::masks

#endif  // NOX_VISUALS_MASKS_DARKENING_KERNELS_H_
