// Tests that walk a large space of inputs take a sample of it under slow checkers.
#ifndef SUPPORT_QUICK_H_
#define SUPPORT_QUICK_H_

#include <cstdlib>

namespace nox::test {

// True when NOX_TEST_QUICK is set, as the valgrind setup does.
inline bool quick() {
  return std::getenv("NOX_TEST_QUICK") != nullptr;
}

}  // namespace nox::test

#endif  // SUPPORT_QUICK_H_
