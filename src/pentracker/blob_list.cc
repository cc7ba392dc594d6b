#include "pentracker/blob_list.h"

#include <cmath>

#include "pentracker/blob_links.h"
#include "pentracker/blob_memory.h"
#include "pentracker/components.h"

namespace {

using nox::pentracker::BlobLinker;
using nox::pentracker::BlobMemory;
using nox::pentracker::Box;
using nox::pentracker::Component;
using nox::pentracker::Components;

// A followed blob has a score only after this many links.
constexpr std::int32_t kHistoryLinks = kBlobHistory - 1;
// A link below this is no continuation: the whole history counts for nothing.
constexpr float kWeakestLink = 0.01F;

void fill_blob(const BlobList *list, const Component &component, const BlobPixel *pixels,
               Blob *blob) {
  const Box &box = component.box;
  const auto span_x = static_cast<float>(box.max_x - box.min_x);
  const auto span_y = static_cast<float>(box.max_y - box.min_y);
  *blob = Blob{};
  blob->mask_width = list->width;
  blob->mask_height = list->height;
  blob->pixels = pixels + component.first_pixel;
  blob->pixel_count = component.pixel_count;
  blob->min_x = box.min_x;
  blob->min_y = box.min_y;
  blob->max_x = box.max_x;
  blob->max_y = box.max_y;
  blob->width = static_cast<std::int32_t>(span_x + 1.0F);
  blob->height = static_cast<std::int32_t>(span_y + 1.0F);
  blob->centre_x = span_x * 0.5F + static_cast<float>(box.min_x);
  blob->centre_y = span_y * 0.5F + static_cast<float>(box.min_y);
}

// The pixels of all components, also of those that the filter will drop, for the current slot.
const BlobPixel *place_pixels(BlobList *list, bool changed, std::int32_t before) {
  if (!changed) return list->memory->shared_pixels(list->history_index, before);
  const Components &labelled = *list->components;
  BlobPixel *pixels = list->memory->pixels(list->history_index, labelled.pixel_count());
  labelled.write_pixels(pixels);
  return pixels;
}

// Fills the current slot with the blobs that the filter keeps.
std::int32_t make_blobs(BlobList *list, const BlobPixel *pixels) {
  const auto &components = list->components->components();
  Blob *blobs = list->memory->blobs(list->history_index, components.size());
  list->history[list->history_index] = blobs;
  std::int32_t count = 0;
  for (const Component &component : components) {
    Blob *blob = blobs + count;
    fill_blob(list, component, pixels, blob);
    blob->index = count;
    if (list->filter == nullptr || list->filter(blob, list->filter_data) != 0) ++count;
  }
  return count;
}

}  // namespace

BlobList *blob_list_new(std::int32_t width, std::int32_t height) {
  auto *list = new BlobList{};
  list->width = width;
  list->height = height;
  list->history_length = kBlobHistory;
  list->components = new Components(width, height);
  list->linker = new BlobLinker;
  list->memory = new BlobMemory;
  return list;
}

void blob_list_free(BlobList *list) {
  if (list == nullptr) return;
  delete list->memory;
  delete list->linker;
  delete list->components;
  delete list;
}

void blob_list_set_filter(BlobList *list, BlobFilter filter, void *data) {
  list->filter = filter;
  list->filter_data = data;
}

std::int32_t blob_list_label(BlobList *list, const BitMask *mask) {
  const bool changed = list->components->label(mask);
  const std::int32_t before = list->history_index;
  list->history_index = (before + 1) % kBlobHistory;
  list->history_counts[list->history_index] = 0;
  const std::int32_t count = make_blobs(list, place_pixels(list, changed, before));
  list->history_counts[list->history_index] = count;
  list->linker->link({list->history[before], list->history_counts[before]},
                     {list->history[list->history_index], count});
  return count;
}

std::int32_t blob_list_count(const BlobList *list) {
  return list->history_counts[list->history_index];
}

Blob *blob_list_get(const BlobList *list, std::int32_t i) {
  return list->history[list->history_index] + i;
}

int blob_inside(const Blob *a, const Blob *b) {
  return a->min_x >= b->min_x && a->min_y >= b->min_y && a->max_x <= b->max_x &&
         a->max_y <= b->max_y;
}

float blob_history_score(const Blob *blob) {
  float sum = 0.0F;
  for (std::int32_t link = 0; link < kHistoryLinks; ++link) {
    if (blob->match_score < kWeakestLink) return 0.0F;
    sum += blob->match_score;
    blob = blob->previous;
    if (blob == nullptr) return 0.0F;
  }
  return sum;
}
