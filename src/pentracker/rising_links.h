// Links to earlier blobs as one walk in list order would take them: each scores higher than all
// before it.
#ifndef PENTRACKER_RISING_LINKS_H_
#define PENTRACKER_RISING_LINKS_H_

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "pentracker/link_kernels.h"

namespace nox::pentracker {

// Links may be added in any order; what no walk would take leaves.
class RisingLinks {
 public:
  void clear() { links_.clear(); }

  void add(LinkCandidate link) {
    if (best_up_to(link.index) >= link.score) return;
    const auto behind = first_from(link.index);
    const auto higher = std::find_if(
        behind, links_.end(), [&](const LinkCandidate &other) { return other.score > link.score; });
    links_.insert(links_.erase(behind, higher), link);
  }

  // The score that a walk has come to when it has passed blob `index`.
  float best_up_to(std::int32_t index) {
    const auto after = first_from(index + 1);
    return after == links_.begin() ? 0.0F : (after - 1)->score;
  }

  // The index of the first link that scores `score` or more; beyond all if there is none.
  std::int32_t first_from_score(float score) const {
    const auto first = std::find_if(links_.begin(), links_.end(),
                                    [&](const LinkCandidate &link) { return link.score >= score; });
    return first == links_.end() ? std::numeric_limits<std::int32_t>::max() : first->index;
  }

  const std::vector<LinkCandidate> &links() const { return links_; }

 private:
  // There are a few links, most often one.
  std::vector<LinkCandidate>::iterator first_from(std::int32_t index) {
    return std::find_if(links_.begin(), links_.end(),
                        [&](const LinkCandidate &link) { return link.index >= index; });
  }

  std::vector<LinkCandidate> links_;  // in list order
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_RISING_LINKS_H_
