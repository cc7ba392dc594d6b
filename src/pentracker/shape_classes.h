// Earlier blobs in classes of equal sizes.
#ifndef PENTRACKER_SHAPE_CLASSES_H_
#define PENTRACKER_SHAPE_CLASSES_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_links.h"
#include "pentracker/near_blobs.h"
#include "pentracker/score_tree.h"

namespace nox::pentracker {

// All blobs of a class score the same against a new blob, as long as they are far from it or have
// no expected place; those that are near score at least as high.
class ShapeClasses {
 public:
  // Takes in all blobs, with the scores of their successors so far.
  void build(BlobSpan earlier);

  // Notes that a successor with this score was found for blob `index`.
  void set_score(std::int32_t index, float score);

  // Appends, of each class, the first blob that `shape` would fit better than its successor does;
  // without those that cannot stand out because one found before scores no less and comes earlier.
  void find(const BlobShape &shape, LinkWanted wanted, std::vector<LinkCandidate> *out);

 private:
  struct Class {
    float position;  // 1 without an expected place, else the factor of distant ones
    float count, width, height;
    float no_score_below;     // no member's successor scores less than this
    std::int32_t begin, end;  // its members
  };
  struct Key {
    std::int32_t count, width, height;
    bool placed;
    bool operator==(const Key &) const = default;
  };

  void find_in(Class *shape_class, float score, LinkWanted wanted, LinkCandidate *highest,
               std::vector<LinkCandidate> *out);
  std::int32_t class_of(const Key &key);
  void place(BlobSpan earlier);

  std::vector<Class> classes_;
  std::vector<Key> keys_;            // of each class
  std::vector<std::int32_t> table_;  // hash table of classes, a power of two long
  std::vector<std::int32_t> class_of_blob_;
  std::vector<std::int32_t> members_;    // indices of blobs, class by class, rising in each
  std::vector<std::int32_t> positions_;  // of each blob: its place in members_
  ScoreTree scores_;                     // of the members' successors
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_SHAPE_CLASSES_H_
