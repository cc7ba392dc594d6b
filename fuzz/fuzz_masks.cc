// Thresholds, word operations and morphology of masks, planes and elements of any size. Beside what
// the sanitizers see, the zero border of every mask is checked after each operation.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz_input.h"
#include "masks/bitmask.h"
#include "masks/morphology.h"

namespace {

using nox::fuzz::Input;

struct MaskDeleter {
  void operator()(BitMask *mask) const { bitmask_free(mask); }
};
using MaskPtr = std::unique_ptr<BitMask, MaskDeleter>;

struct ElementDeleter {
  void operator()(StructuringElement *element) const { structuring_element_free(element); }
};
using ElementPtr = std::unique_ptr<StructuringElement, ElementDeleter>;

void check_border(const BitMask &mask) {
  constexpr std::ptrdiff_t kBorder = 4;
  constexpr std::uint8_t kZero[kBorder] = {};
  for (std::ptrdiff_t y = 0; y < mask.height; ++y) {
    const std::uint8_t *row = mask.block + y * mask.stride;
    if (std::memcmp(row, kZero, kBorder) != 0) std::abort();
  }
}

// A plane without a byte to spare behind its last row.
std::vector<std::uint8_t> make_plane(Input *input, std::int32_t height, std::int32_t stride) {
  std::vector<std::uint8_t> plane(static_cast<std::size_t>(stride * height));
  const std::uint8_t base = input->next();
  for (std::size_t i = 0; i < plane.size(); ++i) {
    plane[i] = static_cast<std::uint8_t>(base + 31 * i + (i % 7 == 0 ? input->next() : 0));
  }
  return plane;
}

ElementPtr make_element(Input *input) {
  const std::int32_t width = input->between(0, 40);
  const std::int32_t height = input->between(1, 60);
  std::vector<std::uint8_t> members(static_cast<std::size_t>(width * height));
  const std::uint8_t pattern = input->next();
  for (std::size_t i = 0; i < members.size(); ++i) {
    members[i] = static_cast<std::uint8_t>((pattern >> (i % 8) & 1) ^ (input->next() & 1));
  }
  return ElementPtr(structuring_element_new(members.data(), width, height));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  const std::int32_t width = input.between(1, 700);
  const std::int32_t height = input.between(1, 70);
  const MaskPtr a(bitmask_new(width, height));
  const MaskPtr b(bitmask_new(width, height));

  const std::int32_t stride = width + input.between(0, 40);
  const std::vector<std::uint8_t> plane = make_plane(&input, height, stride);
  bitmask_threshold(a.get(), plane.data(), stride, input.next());
  bitmask_threshold_below(b.get(), plane.data(), stride, input.next());
  check_border(*a);
  check_border(*b);

  const ElementPtr element = make_element(&input);
  bitmask_morph(b.get(), a.get(), element.get(), input.between(-1, 2));
  check_border(*b);
  bitmask_morph(a.get(), b.get(), element.get(), input.between(-1, 2));
  check_border(*a);

  bitmask_or(a.get(), a.get(), b.get());
  bitmask_and(b.get(), a.get(), b.get());
  bitmask_and_not(a.get(), a.get(), b.get());
  check_border(*a);
  check_border(*b);
  return 0;
}
