// Signed positions as the indices of standard containers.
#ifndef PENTRACKER_AT_H_
#define PENTRACKER_AT_H_

#include <cstddef>
#include <cstdint>

namespace nox::pentracker {

// `i` is not negative.
inline std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

}  // namespace nox::pentracker

#endif  // PENTRACKER_AT_H_
