#include "video/nox_video_frame.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "video/aligned_alloc.h"

namespace {

struct FormatRow {
  std::uint32_t format;
  const char *name;
  std::int32_t planes;
  std::int32_t pixel_bytes;
};

constexpr FormatRow kFormats[] = {
    {0x100, "I420_BT601_0_255", 3, 1},
    {0x101, "I420_BT601_16_235", 3, 1},
    {0x102, "I420_BT709_0_255", 3, 1},
    {0x103, "I420_BT709_16_235", 3, 1},
    {0x180, "A420_BT601_0_255", 4, 1},
    {0x181, "A420_BT601_16_235", 4, 1},
    {0x182, "A420_BT709_0_255", 4, 1},
    {0x183, "A420_BT709_16_235", 4, 1},
    {0x200, "RGB", 1, 3},
    {0x201, "RGBx", 1, 4},
    {0x202, "RGBA", 1, 4},
    {0x203, "BGR", 1, 3},
    {0x204, "BGRx", 1, 4},
    {0x205, "BGRA", 1, 4},
    {0x400, "GRAY_BT601_0_255", 1, 1},
    {0x401, "GRAY_BT601_16_235", 1, 1},
    {0x402, "GRAY_BT709_0_255", 1, 1},
    {0x403, "GRAY_BT709_16_235", 1, 1},
    {0xA05, "CAIRO", 1, 4},
};

// An allocated frame whose planes are released at the end of the test. What the record held before
// is nothing that it may keep.
struct OwnedFrame : NoxVideoFrame {
  OwnedFrame(std::uint32_t code, std::int32_t w, std::int32_t h) {
    std::memset(static_cast<NoxVideoFrame *>(this), 0x5A, sizeof(NoxVideoFrame));
    nox_video_frame_alloc(this, code, w, h);
  }
  ~OwnedFrame() { nox_video_frame_free_planes(this); }
  OwnedFrame(const OwnedFrame &) = delete;
  OwnedFrame &operator=(const OwnedFrame &) = delete;
};

void expect_plane(const NoxVideoFrame &frame, int p, std::int32_t stride, std::int32_t height) {
  EXPECT_EQ(frame.strides[p], stride) << "plane " << p;
  EXPECT_EQ(frame.plane_widths[p], p == 0 || p == 3 ? frame.width : frame.width / 2)
      << "plane " << p;
  EXPECT_EQ(frame.plane_heights[p], height) << "plane " << p;
  ASSERT_NE(frame.planes[p], nullptr) << "plane " << p;
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(frame.planes[p]) % kNoxAlignment, 0U) << "plane " << p;
  // Every byte that was promised can be written: the sanitizers and valgrind watch.
  std::memset(frame.planes[p], 1,
              static_cast<std::size_t>(stride) * static_cast<std::size_t>(frame.height));
}

class EveryFormat : public testing::TestWithParam<FormatRow> {};

TEST_P(EveryFormat, HasItsName) {
  EXPECT_STREQ(nox_video_format_to_string(GetParam().format), GetParam().name);
}

TEST_P(EveryFormat, HasItsPlanesAtEvenAndOddSizes) {
  const FormatRow &row = GetParam();
  for (std::int32_t width : {1, 2, 5, 64, 641}) {
    for (std::int32_t height : {1, 3, 48}) {
      SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
      const OwnedFrame frame(row.format, width, height);
      EXPECT_EQ(frame.format, row.format);
      EXPECT_EQ(frame.width, width);
      EXPECT_EQ(frame.height, height);
      ASSERT_EQ(frame.n_planes, row.planes);
      expect_plane(frame, 0, width * row.pixel_bytes, height);
      if (row.planes >= 3) {
        expect_plane(frame, 1, width / 2, height / 2);
        expect_plane(frame, 2, width / 2, height / 2);
      }
      if (row.planes == 4) expect_plane(frame, 3, width, height);
      for (int p = row.planes; p < 4; ++p) {
        EXPECT_EQ(frame.planes[p], nullptr);
        EXPECT_EQ(frame.strides[p], 0);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryFormat, testing::ValuesIn(kFormats),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(NoxVideoFrame, OddSizeTruncatesChroma) {
  const OwnedFrame frame(0x100, 5, 3);
  EXPECT_EQ(frame.strides[0], 5);
  EXPECT_EQ(frame.plane_widths[1], 2);
  EXPECT_EQ(frame.plane_heights[1], 1);
}

TEST(NoxVideoFrame, AlphaBitWithoutPlanarBitIsPacked) {
  const OwnedFrame frame(0x80, 10, 4);
  EXPECT_EQ(frame.n_planes, 1);
  EXPECT_EQ(frame.strides[0], 40);
}

TEST(NoxVideoFrame, GrayBitComesBeforePlanarBit) {
  const OwnedFrame frame(0x500, 10, 4);
  EXPECT_EQ(frame.n_planes, 1);
  EXPECT_EQ(frame.strides[0], 10);
}

TEST(NoxVideoFrame, ReleasingTwiceIsHarmlessAndKeepsTheGeometry) {
  NoxVideoFrame frame;
  nox_video_frame_alloc(&frame, 0x180, 16, 8);
  nox_video_frame_free_planes(&frame);
  for (const std::uint8_t *plane : frame.planes) EXPECT_EQ(plane, nullptr);
  nox_video_frame_free_planes(&frame);
  EXPECT_EQ(frame.n_planes, 4);
  EXPECT_EQ(frame.strides[3], 16);
}

TEST(NoxVideoFrame, SizesWithoutAPictureHaveNoReadableByteAndStillRelease) {
  for (const auto &[width, height] : {std::pair{0, 0}, {0, 7}, {7, 0}, {-1, 5}, {5, -1}}) {
    const OwnedFrame frame(0x100, width, height);
    EXPECT_EQ(frame.n_planes, 3);
    // A negative size gives no plane, a size of 0 one without a byte.
    EXPECT_EQ(frame.planes[0] == nullptr, width < 0 || height < 0) << width << " by " << height;
  }
  const OwnedFrame both_below(0x100, -1, -1);
  EXPECT_EQ(both_below.planes[0], nullptr);
}

// The largest widths whose rows a stride can tell, and the next ones.
TEST(NoxVideoFrame, RowsThatNoStrideCanTellHaveTheStride0) {
  for (const auto &[format, width] :
       {std::pair{kNoxFormatRgb, 715827882}, {kNoxFormatRgba, 536870911}}) {
    const OwnedFrame widest(format, width, 0);
    EXPECT_EQ(widest.strides[0], width * (format == kNoxFormatRgb ? 3 : 4));
    const OwnedFrame wider(format, width + 1, 0);
    EXPECT_EQ(wider.strides[0], 0);
  }
}

// Three or four times these leave 32 bits, and come back as a size that could be had.
TEST(NoxVideoFrame, WidthsFarBelowZeroHaveNoPlane) {
  for (std::uint32_t format : {0x200U, 0x201U}) {
    for (std::int32_t width : {-0x7FFFFFFF, -1073741760, -1431655700}) {
      NoxVideoFrame frame;
      nox_video_frame_alloc(&frame, format, width, 1);
      EXPECT_LT(frame.strides[0], 0) << width;
      EXPECT_EQ(frame.planes[0], nullptr) << width;
      nox_video_frame_free_planes(&frame);
    }
  }
}

TEST(NoxVideoFrame, UnknownCodesHaveTheEmptyName) {
  for (std::uint32_t code : {0U, 0x80U, 0x104U, 0x184U, 0x206U, 0x404U, 0xA04U, 0xFFFFFFFFU}) {
    EXPECT_STREQ(nox_video_format_to_string(code), "");
  }
}

TEST(AlignedAlloc, GivesTheAlignmentAskedFor) {
  for (std::size_t alignment : {16U, 32U, 64U, 4096U}) {
    for (std::size_t size : {0U, 1U, 63U, 65U}) {
      void *block = nox_aligned_alloc(alignment, size);
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignment, 0U);
      nox_aligned_free(block);
    }
  }
  nox_aligned_free(nullptr);
}

}  // namespace
