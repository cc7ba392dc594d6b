// Connected components of one mask.
#ifndef PENTRACKER_COMPONENTS_H_
#define PENTRACKER_COMPONENTS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "masks/bitmask.h"
#include "pentracker/blob_list.h"
#include "pentracker/noise_scan.h"
#include "pentracker/pixel_groups.h"
#include "pentracker/shape_scan.h"

namespace nox::pentracker {

struct Component {
  std::int32_t id;           // the number of its root group
  std::int32_t first_pixel;  // among the pixels of all components
  std::int32_t pixel_count;
  Box box;
};

class Components {
 public:
  Components(std::int32_t width, std::int32_t height)
      : shape_scan_(width, height), noise_scan_(width, height) {}

  // Returns whether anything may have changed: a mask that stays the same keeps its components.
  bool label(const BitMask *mask);

  // The components of the last mask, by rising id.
  const std::vector<Component> &components() const { return components_; }
  std::size_t pixel_count() const { return pixel_count_; }  // of all components together

  // Writes the pixels of all components, one component after the other: those of its root group,
  // then those of the groups that were merged into it, in that order.
  void write_pixels(BlobPixel *pixels) const;

 private:
  bool is_known(const BitMask *mask);
  void take_sample(const BitMask *mask);
  void list_components();
  void complete(Component *component);

  std::vector<std::uint64_t> sample_, last_sample_;  // some words of the mask and of the last one
  std::vector<std::uint8_t> last_mask_;  // all bytes of its block, or empty if it was not noted
  ShapeScan shape_scan_;
  NoiseScan noise_scan_;
  PixelGroups groups_;
  std::size_t pixel_count_ = 0;
  std::vector<Component> components_;
  std::vector<std::int32_t> first_pixels_;  // of each group, among the pixels of all components
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_COMPONENTS_H_
