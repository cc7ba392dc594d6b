#include "vectorizer/drawing_kernels.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <cstdint>
#include <vector>

#include "support/guarded_plane.h"
#include "support/random.h"
#include "vectorizer/bit_row_memory.h"
#include "vectorizer/frame_overlay_plain.h"

namespace nox::test {
namespace {

class DrawingKernels : public hwy::TestWithParamTarget {
 protected:
  static int alpha(const BitRowMemory &bits, std::int32_t x) {
    return bits.get(x, 0) ? vectorizer::kAlphaEdge : vectorizer::kAlphaWash;
  }
  static void randomize(const BitRowMemory &bits, std::int32_t width, Random *random) {
    const double density = random->between(0, 10) / 10.0;
    for (std::int32_t x = 0; x < width; ++x) bits.set(x, 0, random->chance(density));
  }
  // The chroma row under `bits`, into `dst`, which may be `src`.
  static void draw_chroma(std::uint8_t *dst, const std::uint8_t *src, const BitRowMemory &bits,
                          std::size_t samples) {
    const std::size_t words = bits.rows().words;
    std::vector<std::uint64_t> any(words / 2 + 1), both(words / 2 + 1);
    vectorizer::split_pairs(bits.rows().data, words, any.data(), both.data());
    vectorizer::draw_chroma_row(dst, src, any.data(), both.data(), samples);
  }
};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(DrawingKernels);

TEST_P(DrawingKernels, LumaIsTheBlendWithWhiteForEverySample) {
  const BitRowMemory bits(512, 1);
  std::vector<std::uint8_t> row(512);
  for (std::int32_t i = 0; i < 512; ++i) {
    row[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i);
    bits.set(i, 0, i >= 256);
  }
  vectorizer::draw_luma_row(row.data(), row.data(), bits.rows().data, 512);
  for (int v = 0; v < 256; ++v) {
    EXPECT_EQ(row[static_cast<std::size_t>(v)], blend_plain(255, v, 16)) << v;
    EXPECT_EQ(row[static_cast<std::size_t>(v + 256)], v);
  }
}

TEST_P(DrawingKernels, ChromaIsTheBlendWithGrayForEverySampleAndPair) {
  for (int pair = 0; pair < 4; ++pair) {
    const BitRowMemory bits(512, 1);
    std::vector<std::uint8_t> row(256);
    for (std::int32_t i = 0; i < 256; ++i) {
      row[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i);
      bits.set(2 * i, 0, (pair & 1) != 0);
      bits.set(2 * i + 1, 0, (pair & 2) != 0);
    }
    draw_chroma(row.data(), row.data(), bits, 256);
    const int a = (alpha(bits, 0) + alpha(bits, 1) + 1) / 2;
    for (int v = 0; v < 256; ++v) {
      EXPECT_EQ(row[static_cast<std::size_t>(v)], blend_plain(128, v, a)) << v << " at " << a;
    }
  }
}

// Rows of every length from and to memory that ends at an unreadable page.
TEST_P(DrawingKernels, RowsOfEveryLengthStayInside) {
  Random random(41);
  for (std::int32_t n = 1; n <= 300; ++n) {
    SCOPED_TRACE(n);
    GuardedPlane src(n, 1, n), dst(n, 1, n);
    random.fill(src.data(), src.size());
    const auto samples = static_cast<std::size_t>(n);
    const BitRowMemory luma_bits(n, 1), chroma_bits(2 * n, 1);
    randomize(luma_bits, n, &random);
    randomize(chroma_bits, 2 * n, &random);
    vectorizer::draw_luma_row(dst.data(), src.data(), luma_bits.rows().data, samples);
    for (std::int32_t x = 0; x < n; ++x) {
      ASSERT_EQ(dst.data()[x], blend_plain(255, src.data()[x], alpha(luma_bits, x)));
    }
    draw_chroma(dst.data(), src.data(), chroma_bits, samples);
    for (std::int32_t x = 0; x < n; ++x) {
      const int a = (alpha(chroma_bits, 2 * x) + alpha(chroma_bits, 2 * x + 1) + 1) / 2;
      ASSERT_EQ(dst.data()[x], blend_plain(128, src.data()[x], a));
    }
  }
}

}  // namespace
}  // namespace nox::test
