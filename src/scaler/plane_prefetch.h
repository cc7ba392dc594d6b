// Brings a plane from memory into the cache somewhat ahead of being read.
#ifndef SCALER_PLANE_PREFETCH_H_
#define SCALER_PLANE_PREFETCH_H_

#include <hwy/cache_control.h>

#include <cstddef>
#include <cstdint>

#include "scaler/frame_planes.h"

namespace nox::scaler {

// A reader who goes down a plane row by row has one stream of memory accesses, and a core serves
// one stream at a fraction of what its memory can give: hardware prefetch stops at the end of each
// page. This one asks for the block behind the one being read, its pages in turn, which makes as
// many streams as the block has pages.
class PlanePrefetch {
 public:
  explicit PlanePrefetch(const SourcePlane &plane)
      : next_(reinterpret_cast<std::uintptr_t>(plane.data) + kBlock),
        row_bytes_(is_dense(plane) ? plane.stride : 0) {}

  // To be called with the number of rows that are about to be read. Asks for half of what is due,
  // so that the rest goes out while the rows are worked on.
  void advance(std::int32_t rows) {
    due_ += rows * row_bytes_;
    ask(due_ / 2);
  }

  // Asks for all that is due.
  void catch_up() { ask(0); }

 private:
  static constexpr std::uintptr_t kLine = 64;  // bytes of a cache line
  static constexpr std::uintptr_t kPage = 4096;
  static constexpr std::uintptr_t kPages = 8;  // of a block
  static constexpr std::uintptr_t kBlock = kPages * kPage;
  static constexpr std::ptrdiff_t kTurn = kPages * kLine;

  // Asks for lines until no more than `rest` bytes and a turn are due.
  void ask(std::ptrdiff_t rest) {
    for (; due_ >= rest + kTurn; due_ -= kTurn) take_turn();
  }

  // Not where rows lie upwards or far apart in memory.
  static bool is_dense(const SourcePlane &plane) {
    return plane.stride > 0 && plane.stride < 2 * std::ptrdiff_t{plane.size.width};
  }

  // Asks for the next line of each page of the block. Asking never faults, and what lies behind the
  // last block of a plane is the next plane more often than not.
  void take_turn() {
    for (std::uintptr_t page = 0; page < kPages; ++page) {
      hwy::Prefetch(reinterpret_cast<const std::uint8_t *>(next_ + page * kPage));
    }
    next_ += kLine;
    if (++turns_ % (kPage / kLine) == 0) next_ += kBlock - kPage;
  }

  std::uintptr_t next_;
  std::ptrdiff_t row_bytes_;
  std::ptrdiff_t due_ = 0;
  std::uintptr_t turns_ = 0;
};

}  // namespace nox::scaler

#endif  // SCALER_PLANE_PREFETCH_H_
