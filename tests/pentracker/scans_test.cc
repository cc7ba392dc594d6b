// Both scans, whichever would be chosen, against the rule applied pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "pentracker/mask_patterns.h"
#include "pentracker/noise_scan.h"
#include "pentracker/pixel_groups.h"
#include "pentracker/shape_scan.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

using pentracker::kNoGroup;
using pentracker::NoiseScan;
using pentracker::PixelBlock;
using pentracker::PixelGroups;
using pentracker::ShapeScan;

using Pixels = std::vector<std::int32_t>;  // y * width + x

// The pixels of each group in the order of the scan, and for each root the groups of its component
// in the order of the merges.
struct Groups {
  std::vector<Pixels> pixels;
  std::vector<std::vector<std::int32_t>> members;  // empty for a group that is no root
  bool operator==(const Groups &) const = default;
};

std::size_t at(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

// The group of every pixel by the rule, and the members that merging gives.
class PlainScan {
 public:
  Groups scan(const BitMask *mask) {
    group_of_.assign(at(mask->width * mask->height), kNoGroup);
    for (std::int32_t y = 0; y < mask->height; ++y) {
      for (std::int32_t x = 0; x < mask->width; ++x) {
        if (bitmask_get(mask, x, y) != 0) visit(x, y, mask->width);
      }
    }
    return groups_;
  }

 private:
  void visit(std::int32_t x, std::int32_t y, std::int32_t width) {
    const std::int32_t pixel = y * width + x;
    const std::int32_t above = y > 0 ? group_of_[at(pixel - width)] : kNoGroup;
    const std::int32_t left = x > 0 ? group_of_[at(pixel - 1)] : kNoGroup;
    std::int32_t group = above == kNoGroup ? left : above;
    if (above != kNoGroup && left != kNoGroup) group = std::min(left, above);
    if (group == kNoGroup) {
      group = static_cast<std::int32_t>(groups_.pixels.size());
      groups_.pixels.emplace_back();
      groups_.members.push_back({group});
      root_of_.push_back(group);
    }
    groups_.pixels[at(group)].push_back(pixel);
    group_of_[at(pixel)] = group;
    if (above != kNoGroup && left != kNoGroup) merge(group, std::max(left, above));
  }

  void merge(std::int32_t small, std::int32_t large) {
    const std::int32_t kept = root_of_[at(small)];
    const std::int32_t absorbed = root_of_[at(large)];
    if (kept == absorbed) return;
    auto &from = groups_.members[at(absorbed)];
    for (const std::int32_t member : from) root_of_[at(member)] = kept;
    auto &to = groups_.members[at(kept)];
    to.insert(to.end(), from.begin(), from.end());
    from.clear();
  }

  std::vector<std::int32_t> group_of_;
  std::vector<std::int32_t> root_of_;
  Groups groups_;
};

template <typename Scan>
Groups scan_with(Scan *scan, const BitMask *mask) {
  PixelGroups table;
  scan->scan(mask, &table);
  Groups groups;
  groups.pixels.resize(at(table.group_count()));
  groups.members.resize(at(table.group_count()));
  for (std::int32_t i = 0; i < table.block_count(); ++i) {
    const PixelBlock &block = table.blocks()[i];
    for (std::int32_t y = block.top; y <= block.bottom; ++y) {
      for (std::int32_t x = block.begin; x < block.end; ++x) {
        groups.pixels[at(block.group)].push_back(y * mask->width + x);
      }
    }
  }
  for (std::int32_t group = 0; group < table.group_count(); ++group) {
    if (table.group(group).parent != group) continue;
    for (std::int32_t i = group; i != kNoGroup; i = table.group(i).next_merged) {
      groups.members[at(group)].push_back(i);
    }
  }
  return groups;
}

// A box and a count that do not follow from the pixels.
template <typename Scan>
std::string wrong_sums(Scan *scan, const BitMask *mask, const Groups &plain) {
  PixelGroups table;
  scan->scan(mask, &table);
  for (std::int32_t i = 0; i < table.group_count(); ++i) {
    const auto &group = table.group(i);
    const Pixels &pixels = plain.pixels[at(i)];
    const auto x_of = [&](std::int32_t a, std::int32_t b) {
      return a % mask->width < b % mask->width;
    };
    const auto [left, right] = std::minmax_element(pixels.begin(), pixels.end(), x_of);
    if (group.pixel_count != static_cast<std::int32_t>(pixels.size()) ||
        group.box.min_x != *left % mask->width || group.box.max_x != *right % mask->width ||
        group.box.min_y != pixels.front() / mask->width ||
        group.box.max_y != pixels.back() / mask->width) {
      return "group " + std::to_string(i);
    }
  }
  return "";
}

class EveryPatternScanned : public testing::TestWithParam<MaskPattern> {};

TEST_P(EveryPatternScanned, GivesTheGroupsOfTheRule) {
  constexpr std::int32_t kSizes[][2] = {{1, 1},  {7, 5},   {64, 40}, {65, 33},
                                        {1, 20}, {130, 1}, {190, 90}};
  Random random(3);
  for (const auto &[width, height] : kSizes) {
    ShapeScan shapes(width, height);
    NoiseScan noise(width, height);
    for (std::int32_t frame = 0; frame < (quick() ? 2 : 12); ++frame) {
      SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height) + ", frame " +
                   std::to_string(frame));
      const MaskPtr mask = GetParam().make(width, height, frame, &random);
      set_bits_behind_rows(mask.get());
      const Groups plain = PlainScan().scan(mask.get());
      ASSERT_EQ(scan_with(&shapes, mask.get()), plain);
      ASSERT_EQ(scan_with(&noise, mask.get()), plain);
      ASSERT_EQ(wrong_sums(&shapes, mask.get(), plain), "");
      ASSERT_EQ(wrong_sums(&noise, mask.get(), plain), "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Patterns, EveryPatternScanned, testing::ValuesIn(mask_patterns()),
                         [](const auto &pattern) { return pattern.param.name; });

// Every mask of 4 by 4 pixels: all ways in which runs can part, meet and be cut off.
TEST(Scans, GiveTheGroupsOfTheRuleForEveryTinyMask) {
  constexpr std::int32_t kSide = 4;
  ShapeScan shapes(kSide, kSide);
  NoiseScan noise(kSide, kSide);
  for (std::uint32_t bits = 0; bits < 1U << (kSide * kSide); bits += quick() ? 97 : 1) {
    const MaskPtr mask = mask_where(kSide, kSide, [=](std::int32_t x, std::int32_t y) {
      return (bits >> (y * kSide + x) & 1U) != 0;
    });
    const Groups plain = PlainScan().scan(mask.get());
    ASSERT_EQ(scan_with(&shapes, mask.get()), plain) << bits;
    ASSERT_EQ(scan_with(&noise, mask.get()), plain) << bits;
  }
}

// Wider and lower: runs that part in three and meet again.
TEST(Scans, GiveTheGroupsOfTheRuleForManyLowMasks) {
  constexpr std::int32_t kWidth = 9;
  ShapeScan shapes(kWidth, 5);
  NoiseScan noise(kWidth, 5);
  Random random(4);
  for (int i = 0; i < (quick() ? 300 : 40000); ++i) {
    const double density = 0.5 + 0.4 * (i % 5) / 4;
    const MaskPtr mask =
        mask_where(kWidth, 5, [&](std::int32_t, std::int32_t) { return random.chance(density); });
    const Groups plain = PlainScan().scan(mask.get());
    ASSERT_EQ(scan_with(&shapes, mask.get()), plain) << i;
    ASSERT_EQ(scan_with(&noise, mask.get()), plain) << i;
  }
}

}  // namespace
}  // namespace nox::test
