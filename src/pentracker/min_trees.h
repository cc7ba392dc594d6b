// Several sequences of numbers, each with a segment tree of minima over it, which tells the first
// of its numbers that is below a bound without looking at all of them.
#ifndef PENTRACKER_MIN_TREES_H_
#define PENTRACKER_MIN_TREES_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "pentracker/at.h"

namespace nox::pentracker {

class MinTrees {
 public:
  // A sequence: its nodes are a heap whose root has number 1.
  struct Tree {
    std::int32_t nodes;   // where they begin
    std::int32_t leaves;  // a power of two; those behind the last number are infinite
  };

  void clear() { nodes_.clear(); }

  // A new sequence of `length` infinite numbers; at least one.
  Tree add(std::int32_t length) {
    const auto leaves = static_cast<std::int32_t>(std::bit_ceil(at(length)));
    const Tree tree{static_cast<std::int32_t>(nodes_.size()), leaves};
    nodes_.resize(nodes_.size() + 2 * at(leaves), std::numeric_limits<float>::infinity());
    return tree;
  }

  void set(Tree tree, std::int32_t position, float number) {
    float *const heap = nodes_.data() + tree.nodes;
    std::int32_t node = tree.leaves + position;
    heap[node] = number;
    for (node /= 2; node > 0; node /= 2) {
      heap[node] = std::min(heap[2 * at(node)], heap[2 * at(node) + 1]);
    }
  }

  float least(Tree tree) const { return nodes_[at(tree.nodes + 1)]; }

  // The first position whose number is below `bound`; there must be one.
  std::int32_t first_below(Tree tree, float bound) const {
    const float *const heap = nodes_.data() + tree.nodes;
    std::int32_t node = 1;
    while (node < tree.leaves) node = 2 * node + (heap[2 * at(node)] < bound ? 0 : 1);
    return node - tree.leaves;
  }

 private:
  std::vector<float> nodes_;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_MIN_TREES_H_
