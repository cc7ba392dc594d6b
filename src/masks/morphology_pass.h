// What every morphology kernel is given.
#ifndef MASKS_MORPHOLOGY_PASS_H_
#define MASKS_MORPHOLOGY_PASS_H_

#include <cstddef>
#include <cstdint>

namespace nox::masks {

// Rows in and rows out, which do not overlap. Of each row `bytes` are written, and the first
// bytes - lane_bytes are read: source bits behind these count as 0, as do those in front of a row,
// where lane_bytes bytes of 0 are stored.
struct MorphologyPass {
  const std::uint8_t *src;
  std::uint8_t *dst;
  std::ptrdiff_t src_stride;
  std::ptrdiff_t dst_stride;
  std::int32_t height;
  std::int32_t bytes;
  std::int32_t lane_bytes;  // 1, 2 or 4
};

}  // namespace nox::masks

#endif  // MASKS_MORPHOLOGY_PASS_H_
