// Masks for tests: every kind of content, with garbage wherever a mask may legally hold any.
#ifndef MASKS_MASK_MAKER_H_
#define MASKS_MASK_MAKER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "masks/bitmask.h"
#include "support/guarded_plane.h"
#include "support/random.h"

namespace nox::test {

struct MaskDeleter {
  void operator()(BitMask *mask) const { bitmask_free(mask); }
};
using MaskPtr = std::unique_ptr<BitMask, MaskDeleter>;

inline MaskPtr make_mask(std::int32_t width, std::int32_t height) {
  return MaskPtr(bitmask_new(width, height));
}

// A mask whose block ends exactly at an unreadable page.
class GuardedMask {
 public:
  GuardedMask(std::int32_t width, std::int32_t height);
  BitMask *get() { return &mask_; }
  const BitMask *get() const { return &mask_; }
  BitMask *operator->() { return &mask_; }

 private:
  GuardedBytes bytes_;
  BitMask mask_;
};

enum class Fill { kEmpty, kFull, kSparse, kDense, kRandom };
inline constexpr Fill kFills[] = {Fill::kEmpty, Fill::kFull, Fill::kSparse, Fill::kDense,
                                  Fill::kRandom};

// Fills the pixels as told and every stored bit behind them with garbage, but for the four bytes in
// front of each row, which are 0 in every mask.
void fill_mask(BitMask *mask, Fill fill, Random *random);

// Clears the stored bits from the width to the four bytes in front of the next row.
void clear_behind_width(BitMask *mask);

// The bytes of the whole block.
std::vector<std::uint8_t> block_bytes(const BitMask &mask);

// The rows as text, '#' for 1 and '.' for 0.
std::vector<std::string> mask_rows(const BitMask &mask);

}  // namespace nox::test

#endif  // MASKS_MASK_MAKER_H_
