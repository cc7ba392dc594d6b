// How often tests repeat that gain by repetition.
#ifndef SUPPORT_REPETITIONS_H_
#define SUPPORT_REPETITIONS_H_

#include <cstdlib>

namespace nox::test {

// `in_full` when NOX_TEST_IN_FULL is set, as tools/check does for its long checks.
inline int repetitions(int ordinarily, int in_full) {
  return std::getenv("NOX_TEST_IN_FULL") != nullptr ? in_full : ordinarily;
}

}  // namespace nox::test

#endif  // SUPPORT_REPETITIONS_H_
