// How often tests repeat that gain by repetition.
#ifndef SUPPORT_REPETITIONS_H_
#define SUPPORT_REPETITIONS_H_

#include <algorithm>
#include <cstdlib>

#include "support/quick.h"

namespace nox::test {

// `in_full` when NOX_TEST_IN_FULL is set, as tools/check does for its long checks; a sample under
// slow checkers.
inline int repetitions(int ordinarily, int in_full) {
  if (std::getenv("NOX_TEST_IN_FULL") != nullptr) return in_full;
  return quick() ? std::max(ordinarily / 20, 1) : ordinarily;
}

}  // namespace nox::test

#endif  // SUPPORT_REPETITIONS_H_
