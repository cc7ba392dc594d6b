#include "pentracker/score_tree.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>

namespace nox::pentracker {

void ScoreTree::resize(std::int32_t count) {
  leaves_ =
      static_cast<std::int32_t>(std::bit_ceil(static_cast<std::uint32_t>(std::max(count, 1))));
  nodes_.assign(2 * static_cast<std::size_t>(leaves_), std::numeric_limits<float>::infinity());
}

void ScoreTree::settle() {
  for (std::int32_t i = leaves_ - 1; i >= 1; --i) {
    nodes_[static_cast<std::size_t>(i)] = std::min(node(2 * i), node(2 * i + 1));
  }
}

void ScoreTree::set(std::int32_t i, float score) {
  put(i, score);
  for (std::int32_t n = (leaves_ + i) / 2; n >= 1; n /= 2) {
    const float lower = std::min(node(2 * n), node(2 * n + 1));
    if (lower == node(n)) return;
    nodes_[static_cast<std::size_t>(n)] = lower;
  }
}

// Walks to the right over ever larger subtrees until one holds a low score, then down to it.
std::int32_t ScoreTree::first_below(std::int32_t begin, std::int32_t end, float limit) const {
  if (begin >= end) return end;
  std::int32_t n = leaves_ + begin;
  while (!(node(n) < limit)) {
    while ((n & 1) == 1) n /= 2;  // the subtree to the right begins at the parent's sibling
    if (n == 0) return end;
    ++n;
  }
  while (n < leaves_) n = node(2 * n) < limit ? 2 * n : 2 * n + 1;
  return std::min(n - leaves_, end);
}

}  // namespace nox::pentracker
