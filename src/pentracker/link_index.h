// Linking among many blobs without comparing each with each.
#ifndef PENTRACKER_LINK_INDEX_H_
#define PENTRACKER_LINK_INDEX_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"
#include "pentracker/near_blobs.h"
#include "pentracker/shape_classes.h"

namespace nox::pentracker {

// Gives the links that a walk over all earlier blobs would give. That walk takes, of all blobs it
// meets in list order, each one that scores higher than those before it. So it is enough to know a
// set of candidates that holds all of these, and to take from it the ones that stand out.
//
// Candidates come from three places. The first few blobs that can still be had are compared one by
// one: where little moves, one of them is the right one and cannot be surpassed. Of the others,
// those that are expected near the new blob are compared one by one too. All others score by their
// sizes alone, since distance counts the same for all that are far, and not at all for those that
// have no expected place; of each class of blobs of the same size, then, only the first that can
// still be had matters.
class LinkIndex {
 public:
  // Begins a frame; no blob of `earlier` has a successor yet.
  void start(BlobSpan earlier);

  // Links the next blob of the frame.
  void link(Blob *blob);

 private:
  // Compares the first few open blobs; returns where in the list to go on, or the list's length
  // when nothing further can score higher.
  std::int32_t try_first(const Blob &blob, const BlobShape &shape, LinkTaker *taker);
  void take(LinkTaker *taker, std::int32_t index, float score);
  void take_candidates(LinkTaker *taker);
  void build();
  bool is_closed(std::int32_t index, float score) const;
  std::int32_t next_open(std::int32_t index);

  BlobSpan earlier_{};
  // A blob is open while some new blob might score higher than its successor does.
  std::vector<std::uint64_t> open_;
  std::int32_t first_open_word_ = 0;
  // The two below hold nothing until a blob of the frame needs them.
  bool built_ = false;
  NearBlobs near_;
  ShapeClasses shapes_;
  std::vector<LinkCandidate> candidates_;
  std::vector<LinkCandidate> chain_;
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_LINK_INDEX_H_
