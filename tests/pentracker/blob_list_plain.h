// Labelling and linking told pixel by pixel and pair by pair: what src/pentracker must reproduce.
#ifndef PENTRACKER_BLOB_LIST_PLAIN_H_
#define PENTRACKER_BLOB_LIST_PLAIN_H_

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "masks/bitmask.h"

namespace nox::test {

struct PlainPixel {
  std::int32_t x, y;
};

struct PlainBlob {
  std::int32_t index = 0;
  std::int32_t mask_width = 0, mask_height = 0;
  std::vector<PlainPixel> pixels;
  std::int32_t pixel_count = 0;
  std::int32_t min_x = 2147483647, min_y = 2147483647;
  std::int32_t max_x = -2147483647 - 1, max_y = -2147483647 - 1;
  std::int32_t width = 0, height = 0;
  float centre_x = 0, centre_y = 0;
  PlainBlob *previous = nullptr;
  float match_score = 0;
  PlainBlob *successor = nullptr;
  float successor_score = 0;
  float step_length = 0, step_change = 0;
  float predicted_x = 0, predicted_y = 0;
};

struct PlainGroup {
  std::vector<PlainPixel> pixels;
  std::int32_t id = 0;
  PlainGroup *parent = nullptr;
};

using PlainFrame = std::vector<std::unique_ptr<PlainBlob>>;
using PlainFilter = std::function<bool(const PlainBlob &)>;

// One pixel at a time, with a label array for the current row and one for the row above.
class PlainBlobList {
 public:
  PlainBlobList(std::int32_t width, std::int32_t height, PlainFilter filter = nullptr);

  std::int32_t label(const BitMask *mask);

  const PlainFrame &current() const { return frames_.back(); }
  // The components that survived merging in the last call, in the order of their ids.
  std::vector<const PlainGroup *> components() const;

 private:
  void visit_pixel(std::int32_t x, std::int32_t y);
  void add_pair(PlainGroup *small, PlainGroup *large);
  void merge_groups();
  void start_frame();
  std::unique_ptr<PlainBlob> make_blob(const PlainGroup &group) const;

  std::int32_t width_, height_;
  PlainFilter filter_;
  std::vector<PlainGroup *> above_, row_;
  std::vector<std::unique_ptr<PlainGroup>> groups_;
  std::vector<std::pair<PlainGroup *, PlainGroup *>> pairs_;
  std::int32_t last_x_ = 0, last_y_ = 0;  // deliberately kept from call to call
  std::deque<PlainFrame> frames_;         // the last 30
};

// How well `blob` continues `candidate`, a blob of the previous frame.
float plain_match_score(const PlainBlob &candidate, const PlainBlob &blob);

// Links a new blob to the previous frame's blobs, looking at every one of them.
void plain_link(PlainBlob *blob, const std::vector<PlainBlob *> &previous);

float plain_history_score(const PlainBlob *blob);

}  // namespace nox::test

#endif  // PENTRACKER_BLOB_LIST_PLAIN_H_
