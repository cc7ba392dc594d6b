// The allocator that every core shares for pixel planes, masks and records.
#ifndef VIDEO_ALIGNED_ALLOC_H_
#define VIDEO_ALIGNED_ALLOC_H_

#include <cstddef>

// Alignment of planes, masks and records, in bytes: one cache line, and the widest vector register.
inline constexpr std::size_t kNoxAlignment = 64;

// Returns `size` bytes at a multiple of `alignment` (a power of two, at least sizeof(void *)), or
// null when there is no memory. The bytes are not cleared, and nothing behind the last one belongs
// to the block. Size 0 gives a block that may be freed and not be read. Release with
// nox_aligned_free only.
void *nox_aligned_alloc(std::size_t alignment, std::size_t size);

// Releases a block of nox_aligned_alloc; null is ignored.
void nox_aligned_free(void *block);

#endif  // VIDEO_ALIGNED_ALLOC_H_
