// Where the blobs of the last frames and their pixels lie.
#ifndef PENTRACKER_BLOB_MEMORY_H_
#define PENTRACKER_BLOB_MEMORY_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "pentracker/blob_list.h"

namespace nox::pentracker {

// A block that is kept from round to round of the ring, because most frames need about as much as
// the one before; one that has become far too large is given back.
class KeptBlock {
 public:
  KeptBlock() = default;
  ~KeptBlock();
  KeptBlock(const KeptBlock &) = delete;
  KeptBlock &operator=(const KeptBlock &) = delete;

  void reserve(std::size_t bytes);
  void *get() const { return block_; }

 private:
  void *block_ = nullptr;
  std::size_t size_ = 0;
};

// One block of blobs and one of pixels for each frame of the ring. Frames in a row whose masks are
// the same share the pixels of the first of them.
class BlobMemory {
 public:
  BlobMemory();

  // Room for a frame's blobs; what the slot held before is gone.
  Blob *blobs(std::int32_t slot, std::size_t count);

  // Room for a frame's pixels. What the slot held before is gone, unless a younger frame shares it.
  BlobPixel *pixels(std::int32_t slot, std::size_t count);

  // The pixels of slot `owner`, which `slot` shares from now on.
  BlobPixel *shared_pixels(std::int32_t slot, std::int32_t owner);

 private:
  static constexpr std::int32_t kNone = -1;

  std::int32_t free_block(std::int32_t slot) const;

  std::array<KeptBlock, kBlobHistory> blobs_;
  std::array<KeptBlock, kBlobHistory> pixels_;
  std::array<std::int32_t, kBlobHistory> block_of_;  // which of pixels_ a slot uses; kNone at first
};

}  // namespace nox::pentracker

#endif  // PENTRACKER_BLOB_MEMORY_H_
