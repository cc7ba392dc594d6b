// Linking against the plain walk over all earlier blobs, with blobs that no mask would give so
// densely: equal ones, ones of every shape, ones expected at the same place.
#include "pentracker/blob_links.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "hwy/tests/hwy_gtest.h"
#include "pentracker/blob_list_plain.h"
#include "pentracker/crowd_linker.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

using pentracker::BlobLinker;
using pentracker::BlobSpan;
using pentracker::CrowdLinker;

constexpr std::int32_t kWidth = 448;
constexpr std::int32_t kHeight = 252;

// How a frame's blobs are made: few or many shapes, spread over the picture or not.
struct Crowd {
  const char *name;
  std::int32_t least, most;  // blobs of a frame
  std::int32_t largest;      // width and height
  std::int32_t spread;       // of centres, in pixels each way
  bool filled;               // the pixel count follows from the box
};

constexpr Crowd kCrowds[] = {
    {"dots", 300, 900, 1, 448, true},        {"small", 200, 700, 3, 448, false},
    {"shapes", 200, 500, 40, 448, false},    {"clustered", 200, 500, 4, 30, false},
    {"on_one_spot", 100, 300, 2, 1, true},   {"changing_numbers", 0, 900, 5, 448, false},
    {"few", 1, 4, 20, 200, false},           {"some", 5, 40, 9, 300, false},
    {"thousands", 900, 1500, 9, 448, false},
};

// The blobs of one frame twice: for the method at hand and for the plain walk.
struct Frame {
  std::vector<Blob> blobs;
  std::vector<PlainBlob> plain;
};

std::int32_t centre_of(std::int32_t size, std::int32_t spread, Random *random) {
  const std::int32_t reach = std::min(size, spread);
  return (size - reach) / 2 + random->between(0, reach - 1);
}

Blob random_blob(const Crowd &crowd, Random *random) {
  Blob blob{};
  blob.mask_width = kWidth;
  blob.mask_height = kHeight;
  blob.width = random->between(1, crowd.largest);
  blob.height = random->between(1, crowd.largest);
  const std::int32_t all = blob.width * blob.height;
  blob.pixel_count =
      crowd.filled ? all : random->between(std::min(blob.width + blob.height - 1, all), all);
  blob.centre_x = static_cast<float>(centre_of(kWidth, crowd.spread, random));
  blob.centre_y = static_cast<float>(centre_of(kHeight, crowd.spread, random));
  return blob;
}

// The same blob, a little to the left or right.
Blob moved_blob(const Blob &before, Random *random) {
  Blob blob{};
  blob.mask_width = kWidth;
  blob.mask_height = kHeight;
  blob.width = before.width;
  blob.height = before.height;
  blob.pixel_count = before.pixel_count;
  const float x = before.centre_x + 0.5F * static_cast<float>(random->between(-2, 2));
  blob.centre_x = std::clamp(x, 0.0F, static_cast<float>(kWidth - 1));
  blob.centre_y = before.centre_y;
  return blob;
}

PlainBlob plain_of(const Blob &blob) {
  PlainBlob plain;
  plain.index = blob.index;
  plain.width = blob.width;
  plain.height = blob.height;
  plain.pixel_count = blob.pixel_count;
  plain.centre_x = blob.centre_x;
  plain.centre_y = blob.centre_y;
  return plain;
}

// Half of the frames are new, the others the one before with most of its blobs moved a little.
Frame make_frame(const Crowd &crowd, const Frame &before, Random *random) {
  Frame frame;
  if (!before.blobs.empty() && random->chance(0.5)) {
    for (const Blob &blob : before.blobs) {
      frame.blobs.push_back(random->chance(0.1) ? random_blob(crowd, random)
                                                : moved_blob(blob, random));
    }
  } else {
    frame.blobs.resize(static_cast<std::size_t>(random->between(crowd.least, crowd.most)));
    for (Blob &blob : frame.blobs) blob = random_blob(crowd, random);
  }
  for (std::size_t i = 0; i < frame.blobs.size(); ++i) {
    frame.blobs[i].index = static_cast<std::int32_t>(i);
    frame.plain.push_back(plain_of(frame.blobs[i]));
  }
  return frame;
}

std::string bits_of(float value) {
  return std::to_string(value) + "/" + std::to_string(std::bit_cast<std::uint32_t>(value));
}

template <typename AnyBlob>
std::string links_of(const AnyBlob &blob) {
  return std::to_string(blob.previous == nullptr ? -1 : blob.previous->index) + " " +
         std::to_string(blob.successor == nullptr ? -1 : blob.successor->index) + " " +
         bits_of(blob.match_score) + " " + bits_of(blob.successor_score) + " " +
         bits_of(blob.step_length) + " " + bits_of(blob.step_change) + " " +
         bits_of(blob.predicted_x) + " " + bits_of(blob.predicted_y);
}

void expect_same_links(const Frame &frame) {
  for (std::size_t i = 0; i < frame.blobs.size(); ++i) {
    ASSERT_EQ(links_of(frame.blobs[i]), links_of(frame.plain[i])) << "blob " << i;
  }
}

// Links with `link` what came out of the frame before, and the same plainly.
template <typename Link>
void link_frame(const Link &link, Frame *before, Frame *frame) {
  std::vector<PlainBlob *> plain_earlier;
  for (PlainBlob &blob : before->plain) plain_earlier.push_back(&blob);
  link(BlobSpan{before->blobs.data(), static_cast<std::int32_t>(before->blobs.size())},
       BlobSpan{frame->blobs.data(), static_cast<std::int32_t>(frame->blobs.size())});
  for (PlainBlob &blob : frame->plain) plain_link(&blob, plain_earlier);
}

template <typename Link>
void run(const Crowd &crowd, std::uint64_t seed, const Link &link) {
  SCOPED_TRACE(std::string(crowd.name) + ", seed " + std::to_string(seed));
  Random random(seed);
  std::deque<Frame> frames;  // all stay alive, since their blobs point to each other
  frames.push_back(make_frame(crowd, {}, &random));
  for (int i = 0; i < (quick() ? 3 : 12); ++i) {
    Frame &before = frames.back();
    Frame &frame = frames.emplace_back(make_frame(crowd, before, &random));
    if (!before.blobs.empty()) link_frame(link, &before, &frame);
    ASSERT_NO_FATAL_FAILURE(expect_same_links(before)) << "frame before " << i;
    ASSERT_NO_FATAL_FAILURE(expect_same_links(frame)) << "frame " << i;
  }
}

class CrowdLinkerTest : public hwy::TestWithParamTarget {};

HWY_TARGET_INSTANTIATE_TEST_SUITE_P(CrowdLinkerTest);

TEST_P(CrowdLinkerTest, GivesTheLinksOfTheWalkOverAll) {
  CrowdLinker linker;
  const auto link = [&](BlobSpan earlier, BlobSpan current) {
    linker.start(earlier);
    for (std::int32_t i = 0; i < current.count; ++i) linker.link(current.blobs + i);
  };
  for (std::uint64_t seed = 1; seed < (quick() ? 2 : 3); ++seed) {
    for (const Crowd &crowd : kCrowds) run(crowd, seed, link);
  }
}

TEST(BlobLinker, GivesTheLinksOfTheWalkOverAllForFewAndForMany) {
  BlobLinker linker;
  const auto link = [&](BlobSpan earlier, BlobSpan current) { linker.link(earlier, current); };
  for (const Crowd &crowd : kCrowds) run(crowd, 9, link);
}

TEST(BlobLinks, PositionFactorIsTheSameInFloatAndDouble) {
  for (std::int32_t i = 0; i <= 60000; ++i) {
    const float d = static_cast<float>(i) / 2000.0F;
    const float loss = (d + 1e-25F) * 0.05F;
    const auto exact = static_cast<float>(1.0 - std::min(static_cast<double>(loss), 0.95));
    ASSERT_EQ(pentracker::position_factor(d, 0.0F), exact) << d;
  }
}

TEST(BlobLinks, NoScoreIsHigherThanTheHighest) {
  for (std::int32_t count = 1; count <= 5000; ++count) {
    const auto c = static_cast<float>(count);
    const float highest = pentracker::highest_score(c, 1.0F / c);
    EXPECT_LE(highest, 1.0F);
    PlainBlob blob;
    blob.width = blob.height = 1;
    blob.pixel_count = count;
    for (std::int32_t other = std::max(count - 2, 1); other <= count + 2; ++other) {
      PlainBlob candidate = blob;
      candidate.pixel_count = other;
      EXPECT_LE(plain_match_score(candidate, blob), highest) << count << " to " << other;
      EXPECT_LE(plain_match_score(blob, candidate), highest) << other << " to " << count;
    }
  }
}

}  // namespace
}  // namespace nox::test
