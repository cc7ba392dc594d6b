#include "pentracker/blob_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pentracker/blob_compare.h"
#include "pentracker/blob_list_plain.h"
#include "pentracker/mask_patterns.h"
#include "support/quick.h"
#include "support/random.h"

namespace {

using nox::test::blob_differences;
using nox::test::make_mask;
using nox::test::mask_of;
using nox::test::mask_patterns;
using nox::test::mask_where;
using nox::test::MaskPattern;
using nox::test::MaskPtr;
using nox::test::PlainBlobList;
using nox::test::Random;

struct ListDeleter {
  void operator()(BlobList *list) const { blob_list_free(list); }
};
using ListPtr = std::unique_ptr<BlobList, ListDeleter>;

ListPtr make_list(std::int32_t width, std::int32_t height) {
  return ListPtr(blob_list_new(width, height));
}

struct Area {
  std::int32_t width, height;
};

// Labels `frames` masks of a pattern with both and compares all blobs after each.
void compare_sequence(const MaskPattern &pattern, Area area, std::int32_t frames,
                      std::uint64_t seed) {
  SCOPED_TRACE(pattern.name + " " + std::to_string(area.width) + " by " +
               std::to_string(area.height) + ", seed " + std::to_string(seed));
  Random random(seed);
  const ListPtr list = make_list(area.width, area.height);
  PlainBlobList plain(area.width, area.height);
  for (std::int32_t frame = 0; frame < frames; ++frame) {
    const MaskPtr mask = pattern.make(area.width, area.height, frame, &random);
    nox::test::set_bits_behind_rows(mask.get());
    const std::int32_t count = blob_list_label(list.get(), mask.get());
    ASSERT_EQ(count, plain.label(mask.get())) << "frame " << frame;
    ASSERT_EQ(blob_differences(list.get(), plain), "") << "frame " << frame;
  }
}

class EveryPattern : public testing::TestWithParam<MaskPattern> {};

TEST_P(EveryPattern, MatchesThePlainReferenceFor100Frames) {
  if (nox::test::quick()) return compare_sequence(GetParam(), {65, 12}, 33, 1);
  std::uint64_t seed = 1;
  for (const Area area : {Area{64, 24}, {65, 31}, {37, 40}, {128, 20}}) {
    compare_sequence(GetParam(), area, 100, seed++);
  }
}

TEST_P(EveryPattern, MatchesThePlainReferenceAtTinyAndOddSizes) {
  std::uint64_t seed = 100;
  for (const Area area :
       {Area{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 63}, {63, 3}, {64, 1}, {127, 2}}) {
    compare_sequence(GetParam(), area, nox::test::quick() ? 3 : 40, seed++);
  }
}

TEST_P(EveryPattern, MatchesThePlainReferenceWithThousandsOfBlobs) {
  const Area area = nox::test::quick() ? Area{130, 30} : Area{192, 108};
  compare_sequence(GetParam(), area, nox::test::quick() ? 2 : 5, 7);
}

INSTANTIATE_TEST_SUITE_P(Patterns, EveryPattern, testing::ValuesIn(mask_patterns()),
                         [](const auto &pattern) { return pattern.param.name; });

TEST(BlobList, DiagonalPixelsAreSeparate) {
  const ListPtr list = make_list(3, 3);
  const MaskPtr mask = mask_of({"#.#", ".#.", "#.#"});
  EXPECT_EQ(blob_list_label(list.get(), mask.get()), 5);
}

TEST(BlobList, UShapeIsOneBlobWithAllPixels) {
  const ListPtr list = make_list(3, 3);
  const MaskPtr mask = mask_of({"#.#", "#.#", "###"});
  ASSERT_EQ(blob_list_label(list.get(), mask.get()), 1);
  const Blob *blob = blob_list_get(list.get(), 0);
  ASSERT_EQ(blob->pixel_count, 7);
  // The left arm and the bottom, all of one group, then the right arm.
  const std::int32_t expected[7][2] = {{0, 0}, {0, 1}, {0, 2}, {1, 2}, {2, 2}, {2, 0}, {2, 1}};
  for (std::int32_t i = 0; i < 7; ++i) {
    EXPECT_EQ(blob->pixels[i].x, expected[i][0]) << i;
    EXPECT_EQ(blob->pixels[i].y, expected[i][1]) << i;
  }
}

TEST(BlobList, SinglePixelHasWidthHeightAndCentreOfOnePixel) {
  const ListPtr list = make_list(5, 4);
  const MaskPtr mask = mask_of({".....", ".....", "...#.", "....."});
  ASSERT_EQ(blob_list_label(list.get(), mask.get()), 1);
  const Blob *blob = blob_list_get(list.get(), 0);
  EXPECT_EQ(blob->width, 1);
  EXPECT_EQ(blob->height, 1);
  EXPECT_EQ(blob->centre_x, 3.0F);
  EXPECT_EQ(blob->centre_y, 2.0F);
}

// The pair of the arms 0 and 1 comes before that of 0 and 2 here, but 2 has met 1 first.
TEST(BlobList, ALargerNumberSurvivesWhereMembersNotRootsDecide) {
  const ListPtr list = make_list(7, 5);
  PlainBlobList plain(7, 5);
  const std::vector<std::string> rows[] = {
      {"#.#.#..", "#.###..", "###....", "......#", "......."},
      {"..#.#.#", "#.#.###", "#.###..", "###....", "......."},
      {"#.#.#.#", "#.#.###", "###.#..", "..###..", "......."},
  };
  for (const auto &picture : rows) {
    const MaskPtr mask = mask_of(picture);
    EXPECT_EQ(blob_list_label(list.get(), mask.get()), plain.label(mask.get()));
    EXPECT_EQ(blob_differences(list.get(), plain), "");
  }
}

TEST(BlobList, EmptyMaskStillTakesAHistorySlot) {
  const ListPtr list = make_list(4, 4);
  const MaskPtr spot = mask_of({"....", ".#..", "....", "...."});
  blob_list_label(list.get(), spot.get());
  EXPECT_EQ(blob_list_label(list.get(), make_mask(4, 4).get()), 0);
  EXPECT_EQ(blob_list_count(list.get()), 0);
  ASSERT_EQ(blob_list_label(list.get(), spot.get()), 1);
  EXPECT_EQ(blob_list_get(list.get(), 0)->previous, nullptr);
}

TEST(BlobList, HistoryScoreNeedsThirtyFrames) {
  const ListPtr list = make_list(4, 4);
  const MaskPtr spot = mask_of({"....", ".##.", ".##.", "...."});
  for (int frame = 1; frame <= 40; ++frame) {
    ASSERT_EQ(blob_list_label(list.get(), spot.get()), 1);
    const float score = blob_history_score(blob_list_get(list.get(), 0));
    EXPECT_EQ(score, frame < 30 ? 0.0F : 29.0F) << "frame " << frame;
  }
}

// 0.01 itself is a link, and its float is what the contract means.
TEST(BlobList, HistoryScoreOfLinksOfExactlyOneHundredthCounts) {
  std::vector<Blob> chain(30);
  for (std::size_t i = 1; i < chain.size(); ++i) {
    chain[i].previous = &chain[i - 1];
    chain[i].match_score = 0.01F;
  }
  float sum = 0.0F;
  for (int link = 0; link < 29; ++link) sum += 0.01F;
  EXPECT_EQ(blob_history_score(&chain.back()), sum);
  chain[1].match_score = std::nextafter(0.01F, 0.0F);
  EXPECT_EQ(blob_history_score(&chain.back()), 0.0F);
}

using Pixels = std::vector<std::pair<std::int32_t, std::int32_t>>;

Pixels pixels_of(const Blob &blob) {
  Pixels pixels;
  for (std::int32_t i = 0; i < blob.pixel_count; ++i) {
    pixels.emplace_back(blob.pixels[i].x, blob.pixels[i].y);
  }
  return pixels;
}

// Frames whose masks are the same share their pixels, which outlive the first of them.
TEST(BlobList, KeepsThePixelsOfThirtyFrames) {
  const ListPtr list = make_list(40, 9);
  Random random(15);
  std::deque<Pixels> labelled;  // of each frame's first blob, the current frame's in front
  std::int32_t left = 0;
  for (int frame = 0; frame < 300; ++frame) {
    if (frame % 50 > 12) left = random.between(0, 30);  // it rests for a dozen frames, then moves
    const MaskPtr mask = mask_where(40, 9, [&](std::int32_t x, std::int32_t y) {
      return x >= left && x <= left + y && y >= 3;
    });
    ASSERT_EQ(blob_list_label(list.get(), mask.get()), 1);
    labelled.push_front(pixels_of(*blob_list_get(list.get(), 0)));
    if (labelled.size() > kBlobHistory) labelled.pop_back();
    for (std::size_t age = 0; age < labelled.size(); ++age) {
      const auto slot =
          (static_cast<std::size_t>(list->history_index) + kBlobHistory - age) % kBlobHistory;
      ASSERT_EQ(pixels_of(list->history[slot][0]), labelled[age])
          << "frame " << frame << ", " << age << " frames ago";
    }
  }
}

TEST(BlobList, CountIsZeroBeforeTheFirstLabelling) {
  EXPECT_EQ(blob_list_count(make_list(8, 8).get()), 0);
  blob_list_free(nullptr);
}

int keep_wide(const Blob *blob, void *calls) {
  ++*static_cast<int *>(calls);
  EXPECT_EQ(blob->previous, nullptr);
  return blob->width >= 2 ? 1 : 0;
}

TEST(BlobList, FilterSeesEveryBlobAndDropsSome) {
  const ListPtr list = make_list(48, 30);
  int calls = 0;
  int all = 0;
  blob_list_set_filter(list.get(), keep_wide, &calls);
  PlainBlobList plain(48, 30, [&](const nox::test::PlainBlob &blob) {
    ++all;
    return blob.width >= 2;
  });
  Random random(5);
  for (int frame = 0; frame < 60; ++frame) {
    const MaskPtr mask =
        mask_where(48, 30, [&](std::int32_t, std::int32_t) { return random.chance(0.3); });
    blob_list_label(list.get(), mask.get());
    plain.label(mask.get());
    ASSERT_EQ(blob_differences(list.get(), plain), "") << "frame " << frame;
  }
  EXPECT_EQ(calls, all);
}

int keep_and_count(const Blob * /*blob*/, void *list) {
  EXPECT_EQ(blob_list_count(static_cast<const BlobList *>(list)), 0);
  return 1;
}

// In every round of the ring, whose slots hold the counts of earlier frames.
TEST(BlobList, HasNoBlobsWhileItsFilterRuns) {
  const ListPtr list = make_list(5, 1);
  blob_list_set_filter(list.get(), keep_and_count, list.get());
  const MaskPtr mask = mask_of({"#.#.#"});
  for (int frame = 0; frame < 65; ++frame) {
    ASSERT_EQ(blob_list_label(list.get(), mask.get()), 3) << "frame " << frame;
  }
}

TEST(BlobList, BlobInsideIncludesBorders) {
  Blob outer{};
  outer.min_x = 2, outer.min_y = 3, outer.max_x = 8, outer.max_y = 9;
  Blob inner = outer;
  EXPECT_NE(blob_inside(&inner, &outer), 0);
  for (std::int32_t Blob::*low : {&Blob::min_x, &Blob::min_y}) {
    inner = outer;
    --(inner.*low);
    EXPECT_EQ(blob_inside(&inner, &outer), 0);
    EXPECT_NE(blob_inside(&outer, &inner), 0);
  }
  for (std::int32_t Blob::*high : {&Blob::max_x, &Blob::max_y}) {
    inner = outer;
    ++(inner.*high);
    EXPECT_EQ(blob_inside(&inner, &outer), 0);
  }
}

}  // namespace
