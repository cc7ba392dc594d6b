// Frames that are not in any cache: a pool of pictures larger than the last-level cache, walked in
// turn.
#ifndef SUPPORT_FRAME_POOL_H_
#define SUPPORT_FRAME_POOL_H_

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace nox::bench {

// Bytes of a pool that no cache holds: twice the last-level cache, at least 64 MiB.
inline std::size_t cold_pool_bytes() {
  long cache = 0;
#ifdef _SC_LEVEL3_CACHE_SIZE
  cache = std::max(sysconf(_SC_LEVEL3_CACHE_SIZE), 0L);
#endif
  return std::max<std::size_t>(2 * static_cast<std::size_t>(cache), std::size_t{64} << 20);
}

// Blocks of `bytes` each, 64-byte aligned, together at least cold_pool_bytes(); `fill(block,
// index)` writes each of them once.
class FramePool {
 public:
  template <typename Fill>
  FramePool(std::size_t bytes, Fill fill)
      : step_((bytes + 63) / 64 * 64), count_(cold_pool_bytes() / step_ + 1) {
    memory_ = std::make_unique_for_overwrite<std::uint8_t[]>(step_ * count_ + 64);
    first_ = memory_.get() + (64 - reinterpret_cast<std::uintptr_t>(memory_.get()) % 64) % 64;
    for (std::size_t i = 0; i < count_; ++i) fill(first_ + i * step_, i);
  }

  std::uint8_t *next() {
    next_ = next_ + 1 < count_ ? next_ + 1 : 0;
    return first_ + next_ * step_;
  }
  std::size_t count() const { return count_; }

 private:
  std::size_t step_;
  std::size_t count_;
  std::unique_ptr<std::uint8_t[]> memory_;
  std::uint8_t *first_ = nullptr;
  std::size_t next_ = 0;
};

}  // namespace nox::bench

#endif  // SUPPORT_FRAME_POOL_H_
