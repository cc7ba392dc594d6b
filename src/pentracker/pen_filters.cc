#include "pentracker/pen_tracker.h"

namespace {

// In pixels at work size: a region that holds a pen is larger, the tip of a pen is smaller.
constexpr std::int32_t kLeastRegion = 5;
constexpr std::int32_t kLargestSpot = 30;

bool inside_any(const Blob *blob, const BlobList *regions) {
  const std::int32_t count = blob_list_count(regions);
  for (std::int32_t i = 0; i < count; ++i) {
    if (blob_inside(blob, blob_list_get(regions, i)) != 0) return true;
  }
  return false;
}

}  // namespace

int chroma_blob_filter(const Blob *blob, void * /*tracker*/) {
  return blob->width >= kLeastRegion && blob->height >= kLeastRegion ? 1 : 0;
}

int luma_blob_filter(const Blob *blob, void *tracker) {
  if (blob->width > kLargestSpot || blob->height > kLargestSpot) return 0;
  const auto *lists = static_cast<const PenTracker *>(tracker);
  return inside_any(blob, lists->u_blobs) || inside_any(blob, lists->v_blobs) ? 1 : 0;
}
