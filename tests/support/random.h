// Random input with a fixed seed, so that a failure can be run again.
#ifndef SUPPORT_RANDOM_H_
#define SUPPORT_RANDOM_H_

#include <cstddef>
#include <cstdint>
#include <random>

namespace nox::test {

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  // Uniform in low to high, both included.
  std::int32_t between(std::int32_t low, std::int32_t high) {
    return std::uniform_int_distribution<std::int32_t>(low, high)(engine_);
  }
  bool chance(double probability) { return std::bernoulli_distribution(probability)(engine_); }
  std::uint64_t bits() { return engine_(); }
  void fill(std::uint8_t *bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(engine_());
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace nox::test

#endif  // SUPPORT_RANDOM_H_
