// The fuzzer's bytes as the choices of a fuzz target.
#ifndef FUZZ_INPUT_H_
#define FUZZ_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace nox::fuzz {

// Ends the program, and so reports the input that led here, unless `holds`.
inline void require(bool holds, const char *what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

// Hands out the fuzzer's bytes one by one, then zeros. Every sequence of bytes is an input, so that
// no change that the fuzzer makes is lost. Two of these calls never stand in one list of arguments,
// whose order is the compiler's own: an input means the same everywhere.
class Input {
 public:
  Input(const std::uint8_t *bytes, std::size_t size) : bytes_(bytes), size_(size) {}

  bool empty() const { return size_ == 0; }
  std::uint8_t next() {
    if (size_ == 0) return 0;
    --size_;
    return *bytes_++;
  }
  // low to high, both included, which are less than 65536 apart.
  std::int32_t between(std::int32_t low, std::int32_t high) {
    const std::int32_t value = 256 * next() + next();
    return low + value % (high - low + 1);
  }
  bool flag() { return next() % 2 != 0; }
  // Any 32 bits.
  std::uint32_t word() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | next();
    return value;
  }
  // Few bytes of input for many samples: flat, steps, noise, or the input itself.
  void fill(std::uint8_t *samples, std::size_t count) {
    const int kind = next() % 4;
    std::uint32_t value = next();
    const std::uint32_t step = kind == 1 || kind == 2 ? next() : 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (kind == 1) value = i % (step % 16 + 1) == 0 ? value + step : value;
      if (kind == 2) value = value * 1664525U + 1013904223U + step;
      if (kind == 3) value = empty() ? value : next();
      samples[i] = static_cast<std::uint8_t>(kind == 2 ? value >> 24 : value);
    }
  }

 private:
  const std::uint8_t *bytes_;
  std::size_t size_;
};

}  // namespace nox::fuzz

#endif  // FUZZ_INPUT_H_
