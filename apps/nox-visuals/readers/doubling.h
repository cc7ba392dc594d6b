// Pictures at twice their size.
#ifndef NOX_VISUALS_READERS_DOUBLING_H_
#define NOX_VISUALS_READERS_DOUBLING_H_

#include <cstdint>
#include <vector>

#include "qr/decoder.h"

namespace nox::app {

// Interpolates between samples with the cubic of Catmull and Rom, which keeps edges steeper than a
// mean of neighbours does. `doubled` becomes 2 * width by 2 * height samples without row padding;
// the sample at (x, y) covers those from (2 x, 2 y) to (2 x + 1, 2 y + 1).
void double_picture(const qr::Luma &picture, std::vector<std::uint8_t> *doubled);

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_DOUBLING_H_
