#include "pentracker/diagnostics.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "pentracker/mask_patterns.h"

namespace nox::test {
namespace {

std::string printed(const std::function<void()> &dump) {
  testing::internal::CaptureStdout();
  dump();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

std::size_t occurrences(const std::string &text, const std::string &part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(DumpMask, PrintsAnInitialiser) {
  const MaskPtr mask = mask_of({"#.#", ".#."});
  EXPECT_EQ(printed([&] { dump_mask(mask.get()); }),
            "\n  uint8_t mask[] = {\n     "
            " /* row   0 */\n      1, 0, 1,"
            " /* row   1 */\n      0, 1, 0,"
            "  };\n\n");
}

TEST(DumpMask, BreaksLinesAfter32Pixels) {
  const MaskPtr mask = make_mask(448, 1);
  const std::string text = printed([&] { dump_mask(mask.get()); });
  EXPECT_EQ(occurrences(text, " 0,\n     "), 14U);
  EXPECT_EQ(occurrences(text, " 0,"), 448U);
}

TEST(DumpMask, BreaksALineBehindItsLastPixelToo) {
  for (const std::int32_t width : {31, 32, 33, 64, 65}) {
    std::string row;
    for (std::int32_t x = 1; x <= width; ++x) row += x % 32 == 0 ? " 0,\n     " : " 0,";
    const MaskPtr mask = make_mask(width, 1);
    EXPECT_EQ(printed([&] { dump_mask(mask.get()); }),
              "\n  uint8_t mask[] = {\n      /* row   0 */\n     " + row + "  };\n\n")
        << width;
  }
}

TEST(DumpMask, OfHeightZeroPrintsOnlyHeaderAndEnd) {
  const MaskPtr mask = make_mask(8, 0);
  EXPECT_EQ(printed([&] { dump_mask(mask.get()); }), "\n  uint8_t mask[] = {\n       };\n\n");
}

struct ListDeleter {
  void operator()(BlobList *list) const { blob_list_free(list); }
};

TEST(DumpComponents, ShowsOnlyWhatSurvivedMergingByItsNumber) {
  const std::unique_ptr<BlobList, ListDeleter> list(blob_list_new(5, 3));
  EXPECT_EQ(printed([&] { dump_components(list.get()); }), "");
  // Groups 0 and 1 meet in the second row; 2 stays by itself.
  blob_list_label(list.get(), mask_of({"#.#.#", "###..", "....."}).get());
  EXPECT_EQ(printed([&] { dump_components(list.get()); }),
            "\nBlob 0: 0x0, 0x1, 1x1, 2x1, 2x0, \n"
            "\nBlob 2: 4x0, \n");
}

int keep_none(const Blob * /*blob*/, void * /*data*/) {
  return 0;
}

TEST(DumpComponents, ShowsWhatTheFilterDropped) {
  const std::unique_ptr<BlobList, ListDeleter> list(blob_list_new(3, 1));
  blob_list_set_filter(list.get(), keep_none, nullptr);
  blob_list_label(list.get(), mask_of({".#."}).get());
  EXPECT_EQ(printed([&] { dump_components(list.get()); }), "\nBlob 0: 1x0, \n");
  EXPECT_EQ(printed([&] { dump_blobs(list.get()); }), "");
}

TEST(DumpBlobs, EndsEachBlobWithAnEmptyLine) {
  const std::unique_ptr<BlobList, ListDeleter> list(blob_list_new(4, 2));
  blob_list_label(list.get(), mask_of({"##.#", "...."}).get());
  EXPECT_EQ(printed([&] { dump_blobs(list.get()); }),
            "\nBlob Data 0:\n  0.500000x0.000000\n  wxh: 2x1\n  num_pixels: 2\n\n"
            "\nBlob Data 1:\n  3.000000x0.000000\n  wxh: 1x1\n  num_pixels: 1\n\n");
}

TEST(DumpBits, SixteenHaveOneBar) {
  EXPECT_EQ(printed([] { dump_bits16(0x8005); }), "1 0 1 0 0 0 0 0 | 0 0 0 0 0 0 0 1 \n");
}

TEST(DumpBits, ThirtyTwoHaveThreeBars) {
  EXPECT_EQ(printed([] { dump_bits32(0x80000103U); }),
            "1 1 0 0 0 0 0 0 | 1 0 0 0 0 0 0 0 | 0 0 0 0 0 0 0 0 | 0 0 0 0 0 0 0 1 \n");
}

TEST(DumpBits, HundredAndTwentyEightHaveABarBeforeEachGroupButTheFirst) {
  // One byte behind an odd address: the vector needs no alignment.
  std::uint8_t bytes[17] = {};
  bytes[1] = 0x01;
  bytes[16] = 0x80;
  std::string expected = "10000000";
  for (int group = 1; group < 15; ++group) expected += " | 00000000";
  expected += " | 00000001\n";
  EXPECT_EQ(printed([&] { dump_bits128(bytes + 1); }), expected);
}

}  // namespace
}  // namespace nox::test
