#include "video/plane_memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using nox::video::plane_extent;
using nox::video::plane_sample;
using nox::video::PlaneExtent;
using nox::video::samples_in_plane;

void expect_extent(const PlaneExtent &extent, std::int64_t begin, std::int64_t end) {
  EXPECT_EQ(extent.begin, begin);
  EXPECT_EQ(extent.end, end);
}

TEST(PlaneExtent, IsStrideByHeightWithThePaddingOfTheLastRow) {
  expect_extent(plane_extent(8, 5, 3), 0, 24);
  expect_extent(plane_extent(8, 8, 3), 0, 24);
  expect_extent(plane_extent(8, 5, 1), 0, 8);
}

TEST(PlaneExtent, HoldsTheSamplesOfTheLastRowWhereRowsOverlap) {
  expect_extent(plane_extent(4, 5, 3), 0, 13);
  expect_extent(plane_extent(4, 5, 1), 0, 5);
}

TEST(PlaneExtent, OfRowsThatRunUpwardsBeginsBelowTheFirst) {
  expect_extent(plane_extent(-8, 5, 3), -16, 8);
  expect_extent(plane_extent(-8, 5, 1), 0, 8);
  expect_extent(plane_extent(-4, 5, 2), -4, 5);
}

TEST(PlaneExtent, OfAStrideOf0IsOneRow) {
  expect_extent(plane_extent(0, 5, 3), 0, 5);
}

TEST(PlaneExtent, IsEmptyWithoutRows) {
  for (const std::int32_t height : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    expect_extent(plane_extent(8, 5, height), 0, 0);
    expect_extent(plane_extent(-8, 5, height), 0, 0);
  }
}

TEST(PlaneExtent, CountsIn64Bits) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  expect_extent(plane_extent(kMost, 1, kMost), 0, std::int64_t{kMost} * kMost);
}

class PlaneMemory : public testing::Test {
 protected:
  PlaneMemory() {
    frame_.planes[1] = bytes_ + 16;
    set(8, 5, 3);
  }
  void set(std::int32_t stride, std::int32_t width, std::int32_t height) {
    frame_.strides[1] = stride;
    frame_.plane_widths[1] = width;
    frame_.plane_heights[1] = height;
  }

  std::uint8_t bytes_[64] = {};
  NoxVideoFrame frame_{};
};

TEST_F(PlaneMemory, OfAPlaneThatIsNotThereIsEmpty) {
  expect_extent(plane_extent(frame_, 1), 0, 24);
  frame_.planes[1] = nullptr;
  expect_extent(plane_extent(frame_, 1), 0, 0);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 0, 5), 0);
}

TEST_F(PlaneMemory, SamplesAreCountedToTheEndOfThePlane) {
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 0, 5), 5);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 2, 8), 8);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 2, 9), 8) << "the padding of the last row is the last";
  EXPECT_EQ(samples_in_plane(frame_, 1, 3, 2, 9), 5);
  EXPECT_EQ(samples_in_plane(frame_, 1, 7, 2, 9), 1);
  EXPECT_EQ(samples_in_plane(frame_, 1, 8, 2, 9), 0);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 4, 9), 0);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 0, 0), 0);
}

TEST_F(PlaneMemory, SamplesOfRowsThatRunUpwardsAreCountedToTheEndOfTheFirstRow) {
  set(-8, 5, 3);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 0, 9), 8);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 2, 30), 24);
  EXPECT_EQ(samples_in_plane(frame_, 1, 0, 3, 1), 0) << "below the last row";
  EXPECT_EQ(samples_in_plane(frame_, 1, 7, 3, 1), 0);
  EXPECT_EQ(samples_in_plane(frame_, 1, 8, 3, 1), 0) << "of a row that begins in front";
}

TEST_F(PlaneMemory, SampleIsFoundByTheStride) {
  EXPECT_EQ(plane_sample(frame_, 1, 3, 2), bytes_ + 16 + 19);
  set(-8, 5, 3);
  EXPECT_EQ(plane_sample(frame_, 1, 3, 2), bytes_ + 16 - 13);
}

}  // namespace
