// Thresholds, word operations and morphology of masks, planes and elements of any size, compared
// with the plain references in every byte of the masks, the border left of each row included.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "fuzz_input.h"
#include "masks/bitmask.h"
#include "masks/bitmask_plain.h"
#include "masks/morphology.h"
#include "masks/morphology_plain.h"

namespace {

using nox::fuzz::Input;
using nox::fuzz::require;
using nox::test::Shape;

// The most pixels times members that one erosion or dilation has: the reference goes over them all.
constexpr std::int32_t kMostWork = 1 << 20;

constexpr std::int32_t kWidestElement = 24;

struct MaskDeleter {
  void operator()(BitMask *mask) const { bitmask_free(mask); }
};
using MaskPtr = std::unique_ptr<BitMask, MaskDeleter>;

struct ElementDeleter {
  void operator()(StructuringElement *element) const { structuring_element_free(element); }
};
using ElementPtr = std::unique_ptr<StructuringElement, ElementDeleter>;

// A mask and what the reference says that it is.
struct Twins {
  MaskPtr mask, plain;

  Twins(std::int32_t width, std::int32_t height)
      : mask(bitmask_new(width, height)), plain(bitmask_new(width, height)) {}

  void compare(const char *operation) const {
    require(std::equal(mask->block, mask->block + mask->size, plain->block), operation);
  }
};

// A plane whose memory ends with the last byte that it owns.
struct Plane {
  std::int32_t stride;
  std::vector<std::uint8_t> bytes;

  Plane(Input *input, std::int32_t width, std::int32_t height)
      : stride(width + input->between(0, 40)), bytes(static_cast<std::size_t>(stride * height)) {
    input->fill(bytes.data(), bytes.size());
  }
};

void threshold(Input *input, const Twins &dst) {
  const Plane plane(input, dst.mask->width, dst.mask->height);
  const auto readable = static_cast<std::ptrdiff_t>(plane.bytes.size());
  const std::uint32_t limit = input->next();
  if (input->flag()) {
    bitmask_threshold(dst.mask.get(), plane.bytes.data(), plane.stride, limit);
    nox::test::threshold_plain(dst.plain.get(), plane.bytes.data(), plane.stride, limit, readable);
  } else {
    bitmask_threshold_below(dst.mask.get(), plane.bytes.data(), plane.stride, limit);
    nox::test::threshold_below_plain(dst.plain.get(), plane.bytes.data(), plane.stride, limit,
                                     readable);
  }
  dst.compare("threshold");
}

Shape any_shape(Input *input, const BitMask &mask) {
  const std::int32_t most = std::max(kMostWork / (mask.width * mask.height), 1);
  const std::int32_t width = input->between(0, std::min(2 * kWidestElement, most));
  const std::int32_t height = input->between(1, std::clamp(most / std::max(width, 1), 1, 60));
  Shape shape{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width * height))};
  input->fill(shape.members.data(), shape.members.size());
  if (input->flag()) {
    for (std::uint8_t &member : shape.members) member &= 1;
  }
  return shape;
}

void morph(Input *input, const Twins &dst, const Twins &src) {
  const Shape shape = any_shape(input, *src.mask);
  const int operation = input->between(-1, 2);
  const ElementPtr element(
      structuring_element_new(shape.members.data(), shape.width, shape.height));
  bitmask_morph(dst.mask.get(), src.mask.get(), element.get(), operation);
  const bool known = operation == kBitmaskErode || operation == kBitmaskDilate;
  if (known && shape.width >= 1 && shape.width <= kWidestElement) {
    morph_plain(dst.plain.get(), src.plain.get(), shape, operation == kBitmaskDilate);
  }
  dst.compare("morphology");
}

void combine(int operation, const Twins &dst, const Twins &a, const Twins &b) {
  constexpr struct {
    void (*fast)(BitMask *, const BitMask *, const BitMask *);
    void (*plain)(BitMask *, const BitMask *, const BitMask *);
  } kOperations[] = {{bitmask_or, nox::test::or_plain},
                     {bitmask_and, nox::test::and_plain},
                     {bitmask_and_not, nox::test::and_not_plain}};
  kOperations[operation].fast(dst.mask.get(), a.mask.get(), b.mask.get());
  kOperations[operation].plain(dst.plain.get(), a.plain.get(), b.plain.get());
  dst.compare("words");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  const std::int32_t width = input.between(1, 700);
  const std::int32_t height = input.between(1, 70);
  const Twins masks[] = {{width, height}, {width, height}, {width, height}};
  for (int step = 0; step < 6 && !input.empty(); ++step) {
    const std::uint8_t choice = input.next();
    const Twins &dst = masks[choice % 3];
    const Twins &a = masks[choice / 3 % 3];
    const Twins &b = masks[choice / 9 % 3];
    switch (input.next() % 4) {
      case 0:
        threshold(&input, dst);
        break;
      case 1:
        combine(input.next() % 3, dst, a, b);
        break;
      case 2:
        bitmask_copy(dst.mask.get(), a.mask.get());
        bitmask_copy(dst.plain.get(), a.plain.get());
        dst.compare("copy");
        break;
      default:
        if (&dst != &a) morph(&input, dst, a);
    }
  }
  return 0;
}
