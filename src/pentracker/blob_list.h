// Blobs: the 4-connected components of one mask per frame, followed from frame to frame.
#ifndef PENTRACKER_BLOB_LIST_H_
#define PENTRACKER_BLOB_LIST_H_

#include <cstddef>
#include <cstdint>

#include "masks/bitmask.h"
#include "video/aligned_alloc.h"

namespace nox::pentracker {
class Components;
class BlobLinker;
class BlobMemory;
}  // namespace nox::pentracker

struct BlobPixel {
  std::int32_t x, y;
};

// One component, in pixels of the mask that was labelled. Blobs belong to their list: a blob and
// its pixels are gone after 30 further calls of blob_list_label.
struct alignas(kNoxAlignment) Blob {
  std::int32_t index;  // position in its frame's list
  std::int32_t mask_width;
  std::int32_t mask_height;
  const BlobPixel *pixels;  // every pixel, in the order in which the scan and the merges found them
  std::int32_t pixel_count;
  std::int32_t min_x, min_y, max_x, max_y;  // bounding box, inclusive
  std::int32_t width, height;               // of the bounding box
  float centre_x, centre_y;                 // of the bounding box
  Blob *previous;                           // the blob of the frame before that this one continues
  float match_score;                        // of that link, 0 to 1; 0 without one
  Blob *successor;        // the blob of the frame after that linked here last, with the best score
  float successor_score;  // of that link
  float step_length;      // from the centre of `previous` to this centre, plus 1e-25
  float step_change;      // step_length less that of `previous`, when that had a previous itself
  float predicted_x, predicted_y;  // where the centre is expected in the next frame
};

// Tells whether to keep a blob whose shape is known and whose links are not: nonzero keeps it.
// While a list asks it, the list counts no blobs.
using BlobFilter = int (*)(const Blob *blob, void *data);

// Frames of which the blobs are remembered, the current one included.
inline constexpr std::int32_t kBlobHistory = 30;

struct BlobList {
  std::int32_t width, height;  // of the masks
  // A ring: the blobs of the last frames.
  Blob *history[kBlobHistory];
  std::int32_t history_counts[kBlobHistory];
  std::int32_t history_index;  // slot of the current frame
  std::int32_t history_length;
  BlobFilter filter;  // null: every blob is kept
  void *filter_data;
  nox::pentracker::Components *components;  // of the last call, those that the filter rejected too
  nox::pentracker::BlobLinker *linker;
  nox::pentracker::BlobMemory *memory;  // of the blobs and pixels in the ring
};

// A list for masks of the given size, with an empty history; release it with blob_list_free.
BlobList *blob_list_new(std::int32_t width, std::int32_t height);

// Releases the list with every blob of its history; null is ignored.
void blob_list_free(BlobList *list);

// From the next call of blob_list_label on, `filter` decides with `data` which blobs are kept; null
// keeps all.
void blob_list_set_filter(BlobList *list, BlobFilter filter, void *data);

// Makes the next frame's blobs from `mask`, which has the size of the list, and links each to the
// blob of the frame before that it most likely continues. Returns how many there are.
std::int32_t blob_list_label(BlobList *list, const BitMask *mask);

// The blobs of the last blob_list_label; 0 before the first. `i` is not checked.
std::int32_t blob_list_count(const BlobList *list);
Blob *blob_list_get(const BlobList *list, std::int32_t i);

// Nonzero when the bounding box of `a` lies in that of `b`, borders included.
int blob_inside(const Blob *a, const Blob *b);

// The sum of the scores of the last 29 links when the blob was followed through 30 frames with no
// link below 0.01, else 0; at most 29.
float blob_history_score(const Blob *blob);

#endif  // PENTRACKER_BLOB_LIST_H_
