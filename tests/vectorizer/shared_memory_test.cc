// The vectorizer on frames whose planes lie in one block of memory, beside each other or over each
// other: every byte of the block is as the plain twin leaves it.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "support/guarded_plane.h"
#include "support/quick.h"
#include "support/random.h"
#include "vectorizer/vectorizer.h"
#include "vectorizer/vectorizer_plain.h"
#include "video/plane_memory.h"

namespace nox::test {
namespace {

struct StateDeleter {
  void operator()(VectorizerState *state) const { vectorizer_free(state); }
};

// Where the planes of a frame begin in a block, and their strides.
struct Layout {
  std::int32_t width, height;
  std::int64_t offsets[4];
  std::int32_t strides[4];
  bool alpha = false;
};

NoxVideoFrame frame_in(std::uint8_t *block, const Layout &layout) {
  NoxVideoFrame frame{};
  frame.format = layout.alpha ? kNoxFormatA420 : kNoxFormatI420;
  frame.width = layout.width;
  frame.height = layout.height;
  frame.n_planes = layout.alpha ? 4 : 3;
  for (int p = 0; p < frame.n_planes; ++p) {
    const bool chroma = p == 1 || p == 2;
    frame.planes[p] = block + layout.offsets[p];
    frame.strides[p] = layout.strides[p];
    frame.plane_widths[p] = chroma ? (layout.width + 1) / 2 : layout.width;
    frame.plane_heights[p] = chroma ? (layout.height + 1) / 2 : layout.height;
  }
  return frame;
}

// The block that holds both frames, up to the last byte that a plane owns.
std::size_t block_size(const Layout &in, const Layout &out) {
  std::uint8_t none{};
  std::int64_t size = 0;
  for (const Layout *layout : {&in, &out}) {
    const NoxVideoFrame frame = frame_in(&none, *layout);
    for (int p = 0; p < frame.n_planes; ++p) {
      size = std::max(size, layout->offsets[p] + video::plane_extent(frame, p).end);
    }
  }
  return static_cast<std::size_t>(size);
}

// Draws one picture again and again, long enough for its edges to show.
void expect_as_plain(const Layout &in, const Layout &out, std::uint64_t seed, int frames = 102) {
  const std::size_t size = block_size(in, out);
  GuardedBytes block(size), expected(size);
  std::vector<std::uint8_t> source(size);
  Random(seed).fill(source.data(), size);
  const std::unique_ptr<VectorizerState, StateDeleter> state(vectorizer_new());
  PlainVectorizer plain;
  const NoxVideoFrame from = frame_in(block.data(), in), to = frame_in(block.data(), out);
  for (int i = 1; i <= (quick() ? 2 : frames); ++i) {
    std::copy(source.begin(), source.end(), block.data());
    std::copy(source.begin(), source.end(), expected.data());
    vectorizer_process(state.get(), &from, &to);
    plain.process(frame_in(expected.data(), in), frame_in(expected.data(), out));
    ASSERT_TRUE(std::equal(block.data(), block.data() + size, expected.data())) << "frame " << i;
  }
}

void expect_as_plain(const Layout &layout) {
  expect_as_plain(layout, layout, 31);
}

TEST(SharedMemory, UAndVSideBySide) {
  expect_as_plain({32, 20, {0, 640, 656}, {32, 32, 32}});
  expect_as_plain({33, 21, {0, 756, 774}, {36, 36, 36}});
}

TEST(SharedMemory, VSomeRowsBehindU) {
  expect_as_plain({32, 20, {0, 640, 640 + 16 + 3 * 32}, {32, 32, 32}});
  expect_as_plain({32, 20, {0, 640 + 3 * 32, 640 + 16}, {32, 32, 32}});
}

TEST(SharedMemory, ChromaRightOfLuma) {
  expect_as_plain({40, 30, {0, 40, 60}, {80, 80, 80}});
  expect_as_plain({40, 30, {0, 40, 40 + 15 * 80}, {80, 80, 80}});
}

// A picture cut out of a larger one: what follows its last luma row is the chroma that belongs to
// it.
TEST(SharedMemory, LeftColumnsCutOff) {
  expect_as_plain({24, 16, {16, 40 * 16 + 8, 40 * 16 + 20 * 8 + 8}, {40, 20, 20}});
}

TEST(SharedMemory, AlphaBesideLuma) {
  expect_as_plain({24, 16, {0, 768, 864, 24}, {48, 12, 12, 48}, true});
}

TEST(SharedMemory, OnePlaneForUAndV) {
  expect_as_plain({24, 16, {0, 384, 384}, {24, 12, 12}});
}

TEST(SharedMemory, RowsThatRunUpwards) {
  expect_as_plain(
      {25, 16, {15 * 28, 16 * 28 + 7 * 13, 16 * 28 + 8 * 13 + 7 * 14}, {-28, -13, -14}});
}

TEST(SharedMemory, StridesOfZero) {
  expect_as_plain({24, 16, {0, 384, 396}, {24, 0, 0}});
  expect_as_plain({24, 16, {0, 24, 40}, {0, 12, 12}});
}

TEST(SharedMemory, DrawnOneRowFurther) {
  const Layout in = {24, 16, {24, 480, 600}, {24, 12, 12}};
  expect_as_plain(in, {24, 16, {0, 480, 600}, {24, 12, 12}}, 32);
  expect_as_plain(in, {24, 16, {48, 492, 588}, {24, 12, 12}}, 33);
}

Layout random_layout(Random *random, const Layout &like) {
  Layout layout = like;
  for (int p = 0; p < 4; ++p) {
    const bool tall = p == 0 || p == 3;
    const std::int32_t width = tall ? like.width : (like.width + 1) / 2;
    layout.strides[p] =
        random->chance(0.2) ? random->between(-60, 60) : width + random->between(0, 40);
    const std::int64_t upwards = -video::plane_extent(layout.strides[p], width, like.height).begin;
    layout.offsets[p] = upwards + random->between(0, 1500);
  }
  return layout;
}

TEST(SharedMemory, AnyLayout) {
  Random random(34);
  for (int round = 0; round < (quick() ? 30 : 400); ++round) {
    SCOPED_TRACE(round);
    Layout size{};
    size.width = random.between(1, 40);
    size.height = random.between(1, 24);
    size.alpha = random.chance(0.3);
    const Layout in = random_layout(&random, size);
    const Layout out = random.chance(0.5) ? in : random_layout(&random, size);
    expect_as_plain(in, out, random.bits(), random.chance(0.1) ? 101 : 3);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace nox::test
