#include "pentracker/components.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "pentracker/at.h"
#include "pentracker/mask_rows.h"
#include "pentracker/pixel_block_kernels.h"

namespace nox::pentracker {

namespace {

// Whether the words look like those of a mask that has many short runs.
bool looks_like_noise(const std::vector<std::uint64_t> &words) {
  constexpr std::size_t kPixelsOfTurn = 10;  // in noise a run begins or ends more often than that
  std::size_t turns = 0;
  for (const std::uint64_t pixels : words) {
    if (pixels != 0) turns += static_cast<std::size_t>(std::popcount(pixels ^ pixels << 1));
  }
  return turns > words.size() * kWordBits / kPixelsOfTurn;
}

void extend(Box *box, const Box &other) {
  box->min_x = std::min(box->min_x, other.min_x);
  box->min_y = std::min(box->min_y, other.min_y);
  box->max_x = std::max(box->max_x, other.max_x);
  box->max_y = std::max(box->max_y, other.max_y);
}

}  // namespace

bool Components::label(const BitMask *mask) {
  if (is_known(mask)) return false;
  if (looks_like_noise(sample_)) {
    noise_scan_.scan(mask, &groups_);
  } else {
    shape_scan_.scan(mask, &groups_);
  }
  list_components();
  return true;
}

// Whether the mask is what the last one was. Only one whose sample is that of the last one is noted
// and compared as a whole: most masks change, and these are spared the copy. The bytes behind the
// rows are compared, too; where only they differ, the mask counts as changed and is labelled again.
bool Components::is_known(const BitMask *mask) {
  const std::size_t size = at(mask->size);
  last_sample_.swap(sample_);
  take_sample(mask);
  if (sample_ != last_sample_) {
    last_mask_.clear();
    return false;
  }
  if (last_mask_.size() == size && size != 0 &&
      std::memcmp(last_mask_.data(), mask->block, size) == 0) {
    return true;
  }
  last_mask_.assign(mask->block, mask->block + size);
  return false;
}

// The words of some of the rows.
void Components::take_sample(const BitMask *mask) {
  constexpr std::int32_t kRowStep = 32;
  sample_.clear();
  for (std::int32_t y = kRowStep / 2; y < mask->height; y += kRowStep) {
    const std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
    for (std::int32_t word = 0; word < words_of(mask->width); ++word) {
      sample_.push_back(read_word(row, mask->width, word));
    }
  }
}

void Components::list_components() {
  const std::size_t groups = at(groups_.group_count());
  components_.resize(groups);
  std::size_t count = 0;
  for (std::int32_t group = 0; group < groups_.group_count(); ++group) {
    components_[count].id = group;
    count += groups_.group(group).parent == group ? 1 : 0;
  }
  components_.resize(count);
  first_pixels_.resize(groups);
  std::int32_t first_pixel = 0;
  for (Component &component : components_) {
    component.first_pixel = first_pixel;
    complete(&component);
    first_pixel += component.pixel_count;
  }
  pixel_count_ = at(first_pixel);
}

// Gives the pixels of each group of the component their place.
void Components::complete(Component *component) {
  component->box = groups_.group(component->id).box;
  std::int32_t pixel = component->first_pixel;
  for (std::int32_t i = component->id; i != kNoGroup; i = groups_.group(i).next_merged) {
    first_pixels_[at(i)] = pixel;
    pixel += groups_.group(i).pixel_count;
    extend(&component->box, groups_.group(i).box);
  }
  component->pixel_count = pixel - component->first_pixel;
}

void Components::write_pixels(BlobPixel *pixels) const {
  std::vector<std::int32_t> next = first_pixels_;
  write_pixel_blocks(groups_.blocks(), groups_.block_count(), pixel_count_, next.data(), pixels);
}

}  // namespace nox::pentracker
