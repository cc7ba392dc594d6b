// Links added in any order against one walk in list order.
#include "pentracker/rising_links.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "pentracker/min_trees.h"
#include "support/random.h"

namespace nox::test {
namespace {

using pentracker::LinkCandidate;
using pentracker::MinTrees;
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

TEST(MinTrees, TellTheFirstNumberBelowABound) {
  Random random(42);
  MinTrees trees;
  for (int round = 0; round < 300; ++round) {
    if (round % 50 == 0) trees.clear();
    std::vector<float> numbers(static_cast<std::size_t>(random.between(1, 40)));
    const MinTrees::Tree tree = trees.add(static_cast<std::int32_t>(numbers.size()));
    const MinTrees::Tree other = trees.add(1);
    for (int change = 0; change < 100; ++change) {
      const auto place = static_cast<std::size_t>(
          random.between(0, static_cast<std::int32_t>(numbers.size()) - 1));
      for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (change == 0 || i == place) {
          numbers[i] = static_cast<float>(random.between(0, 20));
          trees.set(tree, static_cast<std::int32_t>(i), numbers[i]);
        }
      }
      trees.set(other, 0, -1.0F);
      ASSERT_EQ(trees.least(tree), *std::min_element(numbers.begin(), numbers.end()));
      const float bound = trees.least(tree) + static_cast<float>(random.between(1, 20));
      const auto first = std::find_if(numbers.begin(), numbers.end(),
                                      [&](float number) { return number < bound; });
      ASSERT_EQ(trees.first_below(tree, bound), first - numbers.begin());
    }
  }
}

}  // namespace
}  // namespace nox::test
