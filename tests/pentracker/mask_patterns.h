// Masks whose components are awkward: long runs of merges, many components, none, one.
#ifndef PENTRACKER_MASK_PATTERNS_H_
#define PENTRACKER_MASK_PATTERNS_H_

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "masks/mask_maker.h"
#include "support/random.h"

namespace nox::test {

void set_pixel(BitMask *mask, std::int32_t x, std::int32_t y);

// Sets the pixels for which `inside` holds.
MaskPtr mask_where(std::int32_t width, std::int32_t height,
                   const std::function<bool(std::int32_t, std::int32_t)> &inside);

// A mask from rows of text, '#' for a set pixel.
MaskPtr mask_of(const std::vector<std::string> &rows);

// Sets the stored bits right of the last column, which belong to no pixel.
void set_bits_behind_rows(BitMask *mask);

// One frame of a sequence: `frame` shifts what moves.
struct MaskPattern {
  std::string name;
  std::function<MaskPtr(std::int32_t width, std::int32_t height, std::int32_t frame,
                        Random *random)>
      make;
};

// How a failing test shows its pattern.
inline void PrintTo(const MaskPattern &pattern, std::ostream *out) {
  *out << pattern.name;
}

const std::vector<MaskPattern> &mask_patterns();

}  // namespace nox::test

#endif  // PENTRACKER_MASK_PATTERNS_H_
