// The plain form of darkening.
#ifndef NOX_VISUALS_TESTS_MASKS_DARKENING_PLAIN_H_
#define NOX_VISUALS_TESTS_MASKS_DARKENING_PLAIN_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace nox::app::masks {

inline void darken_row_plain(std::uint8_t *row, std::size_t samples, std::uint8_t darker,
                             std::uint8_t black) {
  for (std::size_t i = 0; i < samples; ++i) {
    row[i] = static_cast<std::uint8_t>(std::max<int>(row[i] - darker, black));
  }
}

}  // namespace nox::app::masks

#endif  // NOX_VISUALS_TESTS_MASKS_DARKENING_PLAIN_H_
