// Whether two readers saw the same code.
#ifndef NOX_VISUALS_READERS_SAME_CODE_H_
#define NOX_VISUALS_READERS_SAME_CODE_H_

#include <vector>

#include "nox-visuals/observation.h"

namespace nox::app {

// The same bytes at the same place: the middle of one lies within the corners of the other. Two
// cards that say the same, side by side, are two codes.
bool same_code(const Code &a, const Code &b);

// Appends to `codes` those of `more` that are none of its own.
void add_new_codes(const std::vector<Code> &more, std::vector<Code> *codes);

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_SAME_CODE_H_
