// Sequences of masks through a blob list whose filter changes, also to one that keeps every blob,
// compared with the plain reference to the last bit of every number.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "fuzz_input.h"
#include "masks/bitmask.h"
#include "pentracker/blob_compare.h"
#include "pentracker/blob_list.h"
#include "pentracker/blob_list_plain.h"

namespace {

using nox::fuzz::Input;
using nox::fuzz::require;

struct MaskDeleter {
  void operator()(BitMask *mask) const { bitmask_free(mask); }
};
using MaskPtr = std::unique_ptr<BitMask, MaskDeleter>;

struct ListDeleter {
  void operator()(BlobList *list) const { blob_list_free(list); }
};

// What one input may cost: the plain reference compares every blob with every one of the frame
// before, and there is a blob for every second pixel at most.
constexpr std::int64_t kMostPairs = 4'000'000;
constexpr int kMostFrames = 70;

struct Filter {
  int kind;
  std::int32_t limit;

  template <typename AnyBlob>
  bool keeps(const AnyBlob &blob) const {
    switch (kind) {
      case 0:
        return true;
      case 1:
        return blob.width >= limit % 8 && blob.height >= limit / 8 % 8;
      case 2:
        return blob.pixel_count <= limit;
      default:
        return (blob.min_x + blob.max_y) % 3 != limit % 3;
    }
  }
};

int keep(const Blob *blob, void *filter) {
  return static_cast<const Filter *>(filter)->keeps(*blob) ? 1 : 0;
}

std::uint8_t *mask_row(BitMask *mask, std::int32_t y) {
  return mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
}

void flip_pixels(Input *input, BitMask *mask) {
  for (int flips = input->next() % 16; flips > 0; --flips) {
    const std::int32_t x = input->between(0, mask->width - 1);
    std::uint8_t *byte = mask_row(mask, input->between(0, mask->height - 1)) + x / 8;
    *byte = static_cast<std::uint8_t>(*byte ^ 1 << x % 8);
  }
}

// Moves every row to the right by a pixel, or the rows down by one.
void move_pixels(BitMask *mask, bool down) {
  const std::int32_t bytes = (mask->width + 7) / 8;
  for (std::int32_t y = mask->height - 1; y >= 0; --y) {
    std::uint8_t *row = mask_row(mask, y);
    if (down && y > 0) std::copy_n(mask_row(mask, y - 1), bytes, row);
    for (std::int32_t i = bytes - 1; i >= 0 && !down; --i) {
      row[i] = static_cast<std::uint8_t>(row[i] << 1 | (i > 0 ? row[i - 1] >> 7 : 0));
    }
  }
}

// The next mask: a new one, or the last one with a change. Bits behind the last column, which no
// pixel owns, are any.
void next_mask(Input *input, BitMask *mask) {
  const int kind = input->next() % 4;
  if (kind >= 2) return move_pixels(mask, kind == 3);
  if (kind == 1) return flip_pixels(input, mask);
  for (std::int32_t y = 0; y < mask->height; ++y) {
    if (input->flag())
      input->fill(mask_row(mask, y), static_cast<std::size_t>(mask->width + 7) / 8);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  const std::int32_t width = input.between(1, 200);
  const std::int32_t height = input.between(1, 24);
  const std::unique_ptr<BlobList, ListDeleter> list(blob_list_new(width, height));
  Filter filter = {0, 0};
  nox::test::PlainBlobList plain(
      width, height, [&](const nox::test::PlainBlob &blob) { return filter.keeps(blob); });
  const MaskPtr mask(bitmask_new(width, height));
  std::int64_t pairs = 0;
  std::int64_t before = 0;
  for (int frame = 0; frame < kMostFrames && pairs < kMostPairs && !input.empty(); ++frame) {
    const std::uint8_t choice = input.next();
    if (choice % 8 == 0) filter = {choice / 8 % 4, input.next()};
    blob_list_set_filter(list.get(), choice % 16 == 8 && filter.kind == 0 ? nullptr : keep,
                         &filter);
    next_mask(&input, mask.get());
    const std::int32_t count = blob_list_label(list.get(), mask.get());
    require(count == plain.label(mask.get()), "the count");
    const std::string differences = nox::test::blob_differences(list.get(), plain);
    require(differences.empty(), differences.c_str());
    pairs += before * count;
    before = count;
  }
  return 0;
}
