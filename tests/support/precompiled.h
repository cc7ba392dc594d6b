// What nearly every test includes, for the compiler to read once. The tests name what they use all
// the same, which the sanitized build shows: it precompiles nothing.
#ifndef TESTS_SUPPORT_PRECOMPILED_H_
#define TESTS_SUPPORT_PRECOMPILED_H_

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#endif  // TESTS_SUPPORT_PRECOMPILED_H_
