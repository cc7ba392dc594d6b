// An array of scores that can tell where the first low one is.
#ifndef PENTRACKER_SCORE_TREE_H_
#define PENTRACKER_SCORE_TREE_H_

#include <cstdint>
#include <vector>

namespace nox::pentracker {

class ScoreTree {
 public:
  // Makes `count` scores, all beyond any limit until they are set.
  void resize(std::int32_t count);

  // Sets one score without keeping the tree in order; settle() does that for all of them.
  void put(std::int32_t i, float score) { nodes_[static_cast<std::size_t>(leaves_ + i)] = score; }
  void settle();

  // Sets one score.
  void set(std::int32_t i, float score);

  // The first of the scores begin to end - 1 that is below `limit`; `end` when there is none.
  std::int32_t first_below(std::int32_t begin, std::int32_t end, float limit) const;

 private:
  float node(std::int32_t i) const { return nodes_[static_cast<std::size_t>(i)]; }

  std::int32_t leaves_ = 1;   // a power of two
  std::vector<float> nodes_;  // node i is the lower of nodes 2i and 2i + 1; the leaves come last
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_SCORE_TREE_H_
