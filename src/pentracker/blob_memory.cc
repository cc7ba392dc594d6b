#include "pentracker/blob_memory.h"

#include <bit>

#include "pentracker/at.h"
#include "video/aligned_alloc.h"

namespace nox::pentracker {

KeptBlock::~KeptBlock() {
  nox_aligned_free(block_);
}

void KeptBlock::reserve(std::size_t bytes) {
  constexpr std::size_t kSmall = std::size_t{64} * 1024;
  constexpr std::size_t kStep = 4096;  // spares a new block for every little growth
  if (bytes <= size_ && (size_ <= kSmall || bytes >= size_ / 2)) return;
  nox_aligned_free(block_);
  size_ = (bytes + kStep - 1) / kStep * kStep;
  block_ = nox_aligned_alloc(kNoxAlignment, size_);
}

BlobMemory::BlobMemory() {
  block_of_.fill(kNone);
}

Blob *BlobMemory::blobs(std::int32_t slot, std::size_t count) {
  blobs_[at(slot)].reserve(count * sizeof(Blob));
  return static_cast<Blob *>(blobs_[at(slot)].get());
}

BlobPixel *BlobMemory::pixels(std::int32_t slot, std::size_t count) {
  block_of_[at(slot)] = free_block(slot);
  KeptBlock &block = pixels_[at(block_of_[at(slot)])];
  block.reserve(count * sizeof(BlobPixel));
  return static_cast<BlobPixel *>(block.get());
}

BlobPixel *BlobMemory::shared_pixels(std::int32_t slot, std::int32_t owner) {
  block_of_[at(slot)] = block_of_[at(owner)];
  return static_cast<BlobPixel *>(pixels_[at(block_of_[at(slot)])].get());
}

// A block that no other slot uses: its own, if that is one. There are as many blocks as slots.
std::int32_t BlobMemory::free_block(std::int32_t slot) const {
  std::uint32_t used = 0;
  for (std::int32_t other = 0; other < kBlobHistory; ++other) {
    const std::int32_t block = block_of_[at(other)];
    if (other != slot && block != kNone) used |= 1U << block;
  }
  const std::int32_t own = block_of_[at(slot)];
  if (own != kNone && (used >> own & 1U) == 0) return own;
  return std::countr_one(used);
}

}  // namespace nox::pentracker
