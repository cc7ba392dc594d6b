// An owned block of the shared aligned allocator.
#ifndef SCALER_ALIGNED_BYTES_H_
#define SCALER_ALIGNED_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "video/aligned_alloc.h"

namespace nox::scaler {

struct AlignedRelease {
  void operator()(std::uint8_t *block) const { nox_aligned_free(block); }
};
using AlignedBytes = std::unique_ptr<std::uint8_t[], AlignedRelease>;

// `size` zeros at a multiple of `alignment`. Throws std::bad_alloc.
inline AlignedBytes make_aligned_bytes(std::size_t alignment, std::size_t size) {
  AlignedBytes block(static_cast<std::uint8_t *>(nox_aligned_alloc(alignment, size)));
  if (block == nullptr) throw std::bad_alloc();
  std::memset(block.get(), 0, size);
  return block;
}

}  // namespace nox::scaler

#endif  // SCALER_ALIGNED_BYTES_H_
