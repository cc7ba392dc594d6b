// Shapes of structuring elements for tests and benchmarks.
#ifndef MASKS_SHAPES_H_
#define MASKS_SHAPES_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "masks/morphology.h"
#include "masks/morphology_plain.h"
#include "support/random.h"

namespace nox::test {

struct ElementDeleter {
  void operator()(StructuringElement *element) const { structuring_element_free(element); }
};
using ElementPtr = std::unique_ptr<StructuringElement, ElementDeleter>;

inline ElementPtr make_element(const Shape &shape) {
  return ElementPtr(structuring_element_new(shape.members.data(), shape.width, shape.height));
}

inline Shape box(std::int32_t width, std::int32_t height) {
  return {width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width * height), 1)};
}

inline Shape cross3() {
  return {3, 3, {0, 1, 0, 1, 1, 1, 0, 1, 0}};
}

// A shape of centred runs, `lengths` from top to bottom.
inline Shape centred_runs(std::int32_t width, const std::vector<std::int32_t> &lengths) {
  Shape shape{width, static_cast<std::int32_t>(lengths.size()), {}};
  for (const std::int32_t length : lengths) {
    const std::int32_t first = (width - length) / 2;
    for (std::int32_t c = 0; c < width; ++c) {
      shape.members.push_back(c >= first && c < first + length ? 1 : 0);
    }
  }
  return shape;
}

inline Shape diamond5() {
  return centred_runs(5, {1, 3, 5, 3, 1});
}

inline Shape disc15() {
  return centred_runs(15, {5, 9, 11, 13, 13, 15, 15, 15, 15, 15, 13, 13, 11, 9, 5});
}

inline Shape random_shape(std::int32_t width, std::int32_t height, double density, Random *random) {
  Shape shape = box(width, height);
  for (std::uint8_t &member : shape.members) {
    // Any nonzero byte makes a member.
    member = random->chance(density) ? static_cast<std::uint8_t>(random->between(1, 255)) : 0;
  }
  return shape;
}

}  // namespace nox::test

#endif  // MASKS_SHAPES_H_
