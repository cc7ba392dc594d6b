// The earlier blobs that a new blob far from where they are expected may be linked to.
#ifndef PENTRACKER_DISTANT_BLOBS_H_
#define PENTRACKER_DISTANT_BLOBS_H_

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "pentracker/blob_links.h"
#include "pentracker/link_columns.h"
#include "pentracker/min_trees.h"
#include "pentracker/rising_links.h"

namespace nox::pentracker {

// Distance counts the same for all blobs that are far, and not at all for those that have no
// expected place. So all blobs of one shape score the same: of each class of blobs alike, a walk in
// list order can take only the first one that is not taken for as much already. And most blobs are
// soon taken by a near one, closed to distant ones, and leave.
class DistantBlobs {
 public:
  // Takes in the blobs and the scores of their successors so far.
  void build(BlobSpan earlier);

  // Notes that a successor with this score was found for blob `index`.
  void set_taken(std::int32_t index, float score);

  // Adds the links of a new blob to distant ones, given its links to all that are near.
  void add_links(const LinkQuery &query, RisingLinks *links);

 private:
  struct Key {
    std::int32_t pixel_count, width, height;
    bool has_place;
    bool operator==(const Key &) const = default;
  };
  struct Hash {
    std::size_t operator()(const Key &key) const;
  };
  struct Class {
    std::int32_t size;     // members
    std::int32_t first;    // where they begin
    std::int32_t row;      // in the table, or none once all of them have left
    MinTrees::Tree taken;  // for how much each of them is taken
  };

  void find_classes(BlobSpan earlier);
  void place_members(BlobSpan earlier);
  void fill_table(BlobSpan earlier);
  void note(std::int32_t index, float score);
  void update(Class *blobs);
  void tidy();
  void add_link(std::int32_t row, float score, RisingLinks *links) const;
  void add_alike(const BlobShape &shape, RisingLinks *links) const;
  float highest(const BlobShape &shape) const;

  std::unordered_map<Key, std::int32_t, Hash> class_of_key_;
  std::vector<Class> classes_;          // in the order of their first members
  std::vector<std::int32_t> class_of_;  // of each blob
  std::vector<std::int32_t> rank_;      // of each blob among the members of its class
  std::vector<std::int32_t> members_;   // class by class, each in list order
  MinTrees trees_;
  LinkColumns table_;  // a row a class; its index: of the first member that has not left
  std::vector<std::int32_t> class_in_;  // each row of the table
  std::int32_t left_ = 0;               // rows of classes that have left
  std::int32_t open_placeless_ = 0;     // classes without an expected place that have not
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_DISTANT_BLOBS_H_
