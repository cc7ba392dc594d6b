// Links added in any order against one walk in list order; the rows that are open.
#include "pentracker/rising_links.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "pentracker/open_rows.h"
#include "support/random.h"

namespace nox::test {
namespace {

using pentracker::LinkCandidate;
using pentracker::OpenRows;
using pentracker::RisingLinks;

// Of the candidates, in list order, each that scores higher than all before it; of several for one
// blob only the highest counts.
std::vector<LinkCandidate> plain_walk(std::vector<LinkCandidate> candidates) {
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const LinkCandidate &a, const LinkCandidate &b) {
                     return a.index != b.index ? a.index < b.index : a.score > b.score;
                   });
  std::vector<LinkCandidate> taken;
  for (const LinkCandidate &candidate : candidates) {
    if (taken.empty() || candidate.score > taken.back().score) taken.push_back(candidate);
  }
  return taken;
}

TEST(RisingLinks, KeepWhatAWalkInListOrderTakes) {
  Random random(41);
  for (int round = 0; round < 2000; ++round) {
    RisingLinks links;
    links.add({3, 0.25F});
    links.clear();
    std::vector<LinkCandidate> added;
    for (std::int32_t i = random.between(0, 12); i > 0; --i) {
      added.push_back({random.between(0, 15), 0.125F * static_cast<float>(random.between(1, 8))});
      links.add(added.back());
    }
    const std::vector<LinkCandidate> plain = plain_walk(added);
    ASSERT_EQ(links.links().size(), plain.size()) << round;
    for (std::size_t i = 0; i < plain.size(); ++i) {
      EXPECT_EQ(links.links()[i].index, plain[i].index) << round;
      EXPECT_EQ(links.links()[i].score, plain[i].score) << round;
    }
    const std::int32_t place = random.between(0, 16);
    float best = 0.0F;
    for (const LinkCandidate &link : plain) best = link.index <= place ? link.score : best;
    EXPECT_EQ(links.best_up_to(place), best) << round;
  }
}

TEST(OpenRows, TellTheNextOneFromAnyRow) {
  Random random(42);
  OpenRows rows;
  for (const std::int32_t count : {1, 5, 63, 64, 65, 128, 300}) {
    rows.reset(count);
    std::vector<bool> open(static_cast<std::size_t>(count), true);
    for (int change = 0; change < 2 * count; ++change) {
      for (std::int32_t row = 0; row < count; ++row) {
        const auto next = std::find(open.begin() + row, open.end(), true);
        ASSERT_EQ(rows.next(row), next - open.begin()) << row << " of " << count;
        ASSERT_EQ(rows.is_open(row), open[static_cast<std::size_t>(row)]);
      }
      const std::int32_t closed = random.between(0, count - 1);
      rows.close(closed);
      open[static_cast<std::size_t>(closed)] = false;
    }
    EXPECT_EQ(rows.next(count), count);
  }
}

}  // namespace
}  // namespace nox::test
