// Memory for tests of code that must not touch a byte outside its picture.
#ifndef SUPPORT_GUARDED_PLANE_H_
#define SUPPORT_GUARDED_PLANE_H_

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

namespace nox::test {

// `size` bytes that end exactly at an unreadable page, with another unreadable page in front of the
// first page used. A read or write behind the last byte ends the test program.
class GuardedBytes {
 public:
  explicit GuardedBytes(std::size_t size) : size_(size) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t pages = (size + page - 1) / page;
    mapped_ = (pages + 2) * page;
    void *map = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) throw std::bad_alloc();
    map_ = static_cast<std::uint8_t *>(map);
    if (pages != 0 && mprotect(map_ + page, pages * page, PROT_READ | PROT_WRITE) != 0) {
      throw std::bad_alloc();
    }
    data_ = map_ + page + pages * page - size;
  }
  ~GuardedBytes() { munmap(map_, mapped_); }
  GuardedBytes(const GuardedBytes &) = delete;
  GuardedBytes &operator=(const GuardedBytes &) = delete;

  std::uint8_t *data() { return data_; }
  const std::uint8_t *data() const { return data_; }
  std::size_t size() const { return size_; }

 private:
  std::size_t size_;
  std::size_t mapped_ = 0;
  std::uint8_t *map_ = nullptr;
  std::uint8_t *data_ = nullptr;
};

// A plane of `height` rows, `stride` bytes apart, whose last sample is the last readable byte: the
// last row has no padding behind it.
class GuardedPlane {
 public:
  GuardedPlane(std::int32_t width, std::int32_t height, std::int32_t stride)
      : bytes_(height <= 0
                   ? 0
                   : static_cast<std::size_t>(stride) * static_cast<std::size_t>(height - 1) +
                         static_cast<std::size_t>(width)),
        width_(width),
        height_(height),
        stride_(stride) {}

  std::uint8_t *data() { return bytes_.data(); }
  const std::uint8_t *data() const { return bytes_.data(); }
  std::uint8_t *row(std::int32_t y) { return data() + static_cast<std::ptrdiff_t>(y) * stride_; }
  const std::uint8_t *row(std::int32_t y) const {
    return data() + static_cast<std::ptrdiff_t>(y) * stride_;
  }
  std::size_t size() const { return bytes_.size(); }
  std::int32_t width() const { return width_; }
  std::int32_t height() const { return height_; }
  std::int32_t stride() const { return stride_; }
  void fill(std::uint8_t value) { std::memset(data(), value, size()); }

 private:
  GuardedBytes bytes_;
  std::int32_t width_;
  std::int32_t height_;
  std::int32_t stride_;
};

}  // namespace nox::test

#endif  // SUPPORT_GUARDED_PLANE_H_
