// The fuzzer's bytes as the choices of a fuzz target.
#ifndef FUZZ_INPUT_H_
#define FUZZ_INPUT_H_

#include <cstddef>
#include <cstdint>

namespace nox::fuzz {

// Hands out the fuzzer's bytes one by one, then zeros.
class Input {
 public:
  Input(const std::uint8_t *bytes, std::size_t size) : bytes_(bytes), size_(size) {}

  bool empty() const { return size_ == 0; }
  std::int32_t between(std::int32_t low, std::int32_t high) {
    const std::int32_t value = 256 * next() + next();
    return low + value % (high - low + 1);
  }
  std::uint8_t next() {
    if (size_ == 0) return 0;
    --size_;
    return *bytes_++;
  }

 private:
  const std::uint8_t *bytes_;
  std::size_t size_;
};

}  // namespace nox::fuzz

#endif  // FUZZ_INPUT_H_
