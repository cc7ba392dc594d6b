// Sequences of pictures through a tracker, compared with the plain reference: the answers and all
// blobs. Each picture is dark and without colour but for a few rectangles, so that spots, regions
// and pens come about.
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_input.h"
#include "pentracker/blob_compare.h"
#include "pentracker/pen_tracker.h"
#include "pentracker/pen_tracker_plain.h"

namespace {

using nox::fuzz::Input;
using nox::fuzz::require;

// The reference takes milliseconds for a picture of any size, since it goes over the work planes.
constexpr int kMostPictures = 6;

struct TrackerDeleter {
  void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
};

struct Picture {
  NoxVideoFrame frame = {};
  std::vector<std::uint8_t> planes[3];

  // The planes end with the last byte that theirs is: strides times heights.
  Picture(Input *input, std::int32_t width, std::int32_t height) {
    frame.format = kNoxFormatI420;
    frame.width = width;
    frame.height = height;
    frame.n_planes = 3;
    for (int p = 0; p < 3; ++p) {
      frame.plane_widths[p] = p == 0 ? width : (width + 1) / 2;
      frame.plane_heights[p] = p == 0 ? height : (height + 1) / 2;
      frame.strides[p] = frame.plane_widths[p] + input->next() % 20;
      planes[p].assign(static_cast<std::size_t>(frame.strides[p] * frame.plane_heights[p]),
                       p == 0 ? 40 : 128);
      frame.planes[p] = planes[p].data();
    }
    for (int i = input->next() % 8; i > 0; --i) draw_rectangle(input);
  }

 private:
  void draw_rectangle(Input *input) {
    const int p = input->next() % 3;
    const std::int32_t left = frame.plane_widths[p] * input->next() / 256;
    const std::int32_t top = frame.plane_heights[p] * input->next() / 256;
    const std::int32_t width = frame.plane_widths[p] * (input->next() % 64) / 256 + 1;
    const std::int32_t height = frame.plane_heights[p] * (input->next() % 64) / 256 + 1;
    const std::uint8_t value = input->next();
    const std::uint8_t noise = input->next();
    std::uint32_t state = noise;
    for (std::int32_t y = top; y < std::min(top + height, frame.plane_heights[p]); ++y) {
      for (std::int32_t x = left; x < std::min(left + width, frame.plane_widths[p]); ++x) {
        state = state * 1664525U + 1013904223U;
        frame.planes[p][y * frame.strides[p] + x] =
            static_cast<std::uint8_t>(value ^ (noise < 128 ? 0 : state >> 24 & noise));
      }
    }
  }
};

// Sizes at which the scalers do different things, and any other.
std::int32_t any_size(Input *input, std::int32_t work) {
  switch (input->next() % 4) {
    case 0:
      return work;
    case 1:
      return 2 * work;
    case 2:
      return input->next() % 64;
    default:
      return input->between(1, 600);
  }
}

void compare_blobs(const BlobList *list, const nox::test::PlainBlobList &plain) {
  const std::string differences = nox::test::blob_differences(list, plain);
  require(differences.empty(), differences.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  const std::unique_ptr<PenTracker, TrackerDeleter> tracker(pen_tracker_new());
  nox::test::PlainPenTracker plain;
  std::int32_t width = 0;
  std::int32_t height = 0;
  for (int i = 0; i < kMostPictures && !input.empty(); ++i) {
    if (i == 0 || input.next() % 4 == 0) {
      width = any_size(&input, kPenWorkWidth);
      height = any_size(&input, kPenWorkHeight);
    }
    Picture picture(&input, width, height);
    nox::test::PenPosition actual{0, -7.0F, -7.0F, 99};
    actual.found = pen_tracker_process(tracker.get(), &picture.frame, &picture.frame, &actual.x,
                                       &actual.y, &actual.pressed);
    nox::test::PenPosition expected = plain.process(picture.frame);
    if (expected.found == 0) expected = {0, -7.0F, -7.0F, 99};
    require((actual.found != 0) == (expected.found != 0), "whether a pen is found");
    require(std::bit_cast<std::uint32_t>(actual.x) == std::bit_cast<std::uint32_t>(expected.x) &&
                std::bit_cast<std::uint32_t>(actual.y) == std::bit_cast<std::uint32_t>(expected.y),
            "where it is");
    require(actual.pressed == expected.pressed, "whether it is pressed");
    compare_blobs(tracker->u_blobs, plain.u);
    compare_blobs(tracker->v_blobs, plain.v);
    compare_blobs(tracker->luma_blobs, plain.luma);
  }
  return 0;
}
