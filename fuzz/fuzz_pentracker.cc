// Sequences of masks through a blob list, compared with the plain reference, and pictures of any
// size through a tracker.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "fuzz_input.h"
#include "masks/bitmask.h"
#include "pentracker/blob_list.h"
#include "pentracker/blob_list_plain.h"
#include "pentracker/pen_tracker.h"

namespace {

using nox::fuzz::Input;

struct MaskDeleter {
  void operator()(BitMask *mask) const { bitmask_free(mask); }
};
struct ListDeleter {
  void operator()(BlobList *list) const { blob_list_free(list); }
};
struct TrackerDeleter {
  void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
};

void require(bool holds) {
  if (!holds) std::abort();
}

void compare(const BlobList *list, const nox::test::PlainBlobList &plain) {
  const auto &expected = plain.current();
  require(blob_list_count(list) == static_cast<std::int32_t>(expected.size()));
  for (std::int32_t i = 0; i < blob_list_count(list); ++i) {
    const Blob &blob = *blob_list_get(list, i);
    const nox::test::PlainBlob &wanted = *expected[static_cast<std::size_t>(i)];
    require(blob.pixel_count == wanted.pixel_count && blob.match_score == wanted.match_score &&
            blob.predicted_x == wanted.predicted_x && blob.predicted_y == wanted.predicted_y);
    require((blob.previous == nullptr) == (wanted.previous == nullptr));
    for (std::size_t p = 0; p < wanted.pixels.size(); ++p) {
      require(blob.pixels[p].x == wanted.pixels[p].x && blob.pixels[p].y == wanted.pixels[p].y);
    }
  }
}

void label_masks(Input *input) {
  const std::int32_t width = input->between(1, 150);
  const std::int32_t height = input->between(1, 20);
  const std::unique_ptr<BlobList, ListDeleter> list(blob_list_new(width, height));
  nox::test::PlainBlobList plain(width, height);
  for (int frame = 0; frame < 40 && !input->empty(); ++frame) {
    const std::unique_ptr<BitMask, MaskDeleter> mask(bitmask_new(width, height));
    for (std::int32_t y = 0; y < height; ++y) {
      std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
      std::generate_n(row, (width + 7) / 8, [&] { return input->next(); });
    }
    require(blob_list_label(list.get(), mask.get()) == plain.label(mask.get()));
    compare(list.get(), plain);
  }
}

void track_pictures(Input *input) {
  const std::unique_ptr<PenTracker, TrackerDeleter> tracker(pen_tracker_new());
  for (int frame = 0; frame < 4 && !input->empty(); ++frame) {
    const std::int32_t width = input->between(0, 80);
    const std::int32_t height = input->between(0, 60);
    const std::int32_t stride = width + input->between(0, 20);
    std::vector<std::uint8_t> plane(static_cast<std::size_t>(stride * height));
    for (std::uint8_t &sample : plane) sample = input->next();
    NoxVideoFrame picture{};
    picture.format = kNoxFormatI420;
    picture.width = width;
    picture.height = height;
    picture.n_planes = 3;
    for (int p = 0; p < 3; ++p) {
      picture.planes[p] = plane.data();
      picture.strides[p] = stride;
    }
    float x = 0;
    float y = 0;
    std::int32_t pressed = 0;
    if (pen_tracker_process(tracker.get(), &picture, &picture, &x, &y, &pressed) == 0) continue;
    require(x >= 0 && x < 1 && y >= 0 && y < 1 && (pressed == 0 || pressed == 1));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  if (input.next() % 2 == 0) {
    label_masks(&input);
  } else {
    track_pictures(&input);
  }
  return 0;
}
