#include "masks/bitmask_plain.h"

namespace nox::test {
namespace {

template <typename Test>
void threshold_by(BitMask *dst, const std::uint8_t *plane, std::int32_t stride,
                  std::ptrdiff_t readable, Test test) {
  for (std::int32_t i = 0; i < dst->size; ++i) dst->block[i] = 0;
  for (std::int32_t y = 0; y < dst->height; ++y) {
    std::uint8_t *row = dst->data + static_cast<std::ptrdiff_t>(y) * dst->stride;
    for (std::int32_t x = 0; x < (dst->width + 15) / 16 * 16; ++x) {
      const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * stride + x;
      if (at < readable && test(plane[at])) set_bit_plain(row, x, 1);
    }
  }
}

template <typename Combine>
void combine_by(BitMask *dst, const BitMask *a, const BitMask *b, Combine combine) {
  for (std::ptrdiff_t y = 0; y < dst->height; ++y) {
    for (std::int32_t x = 0; x < (dst->width + 63) / 64 * 64; ++x) {
      const int p = bit_plain(a->data + y * a->stride, x);
      const int q = bit_plain(b->data + y * b->stride, x);
      set_bit_plain(dst->data + y * dst->stride, x, combine(p, q));
    }
  }
}

}  // namespace

int bit_plain(const std::uint8_t *row, std::int32_t x) {
  return row[x / 8] >> (x % 8) & 1;
}

void set_bit_plain(std::uint8_t *row, std::int32_t x, int value) {
  const int others = row[x / 8] & ~(1 << (x % 8));
  row[x / 8] = static_cast<std::uint8_t>(others | value << (x % 8));
}

void threshold_plain(BitMask *dst, const std::uint8_t *plane, std::int32_t stride,
                     std::uint32_t threshold, std::ptrdiff_t readable) {
  threshold_by(dst, plane, stride, readable,
               [=](std::uint8_t sample) { return sample > threshold % 256; });
}

void threshold_below_plain(BitMask *dst, const std::uint8_t *plane, std::int32_t stride,
                           std::uint32_t threshold, std::ptrdiff_t readable) {
  threshold_by(dst, plane, stride, readable,
               [=](std::uint8_t sample) { return sample < threshold % 256; });
}

void or_plain(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_by(dst, a, b, [](int p, int q) { return p | q; });
}

void and_plain(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_by(dst, a, b, [](int p, int q) { return p & q; });
}

void and_not_plain(BitMask *dst, const BitMask *a, const BitMask *b) {
  combine_by(dst, a, b, [](int p, int q) { return p & (1 - q); });
}

}  // namespace nox::test
