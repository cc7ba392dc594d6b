#include "noxvisuals/whole_frame.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace nox::noxvisuals {
namespace {

// A mapped I420 picture of 6 by 4 in memory of our own: rows of 8 and 4 bytes, one plane behind the
// other, and as many bytes of all that as a test says.
class Mapped {
 public:
  static constexpr std::size_t kAll = 8 * 4 + 2 * 4 * 2;
  static constexpr std::size_t kToLastSample = kAll - 1;

  explicit Mapped(std::size_t bytes) : memory_(kAll) {
    std::iota(memory_.begin(), memory_.end(), std::uint8_t{1});
    gst_video_info_set_format(&frame_.info, GST_VIDEO_FORMAT_I420, 6, 4);
    constexpr std::size_t kOffsets[3] = {0, 32, 40};
    constexpr gint kStrides[3] = {8, 4, 4};
    for (std::size_t p = 0; p < 3; ++p) {
      frame_.info.stride[p] = kStrides[p];
      frame_.data[p] = memory_.data() + kOffsets[p];
    }
    frame_.map[0].data = memory_.data();
    frame_.map[0].size = bytes;
  }

  const GstVideoFrame &get() const { return frame_; }
  GstVideoFrame &get() { return frame_; }
  std::vector<std::uint8_t> &memory() { return memory_; }

 private:
  std::vector<std::uint8_t> memory_;
  GstVideoFrame frame_{};
};

bool is_mapped(const NoxVideoFrame &frame, const GstVideoFrame &mapped) {
  for (int p = 0; p < frame.n_planes; ++p) {
    if (frame.planes[p] != mapped.data[p]) return false;
  }
  return true;
}

TEST(WholeFrame, IsTheMappedMemoryWhereThatReachesFarEnough) {
  const Mapped mapped(Mapped::kAll);
  EXPECT_TRUE(is_mapped(WholeFrame(mapped.get(), Touches::kPlanes).get(), mapped.get()));
  const Mapped short_of_padding(Mapped::kToLastSample);
  EXPECT_TRUE(is_mapped(WholeFrame(short_of_padding.get(), Touches::kSamples).get(),
                        short_of_padding.get()));
}

TEST(WholeFrame, IsACopyWhereOneByteIsMissing) {
  Mapped mapped(Mapped::kToLastSample);
  WholeFrame frame(mapped.get(), Touches::kPlanes);
  EXPECT_FALSE(is_mapped(frame.get(), mapped.get()));
  const Mapped without_a_sample(Mapped::kToLastSample - 1);
  EXPECT_FALSE(is_mapped(WholeFrame(without_a_sample.get(), Touches::kSamples).get(),
                         without_a_sample.get()));
}

TEST(WholeFrame, CopiesSamplesAndPaddingWithTheirStrides) {
  Mapped mapped(Mapped::kToLastSample);
  WholeFrame frame(mapped.get(), Touches::kPlanes);
  EXPECT_EQ(frame.get().strides[0], 8);
  EXPECT_EQ(frame.get().strides[2], 4);
  for (std::size_t i = 0; i < 32; ++i) EXPECT_EQ(frame.get().planes[0][i], 1 + i);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(frame.get().planes[1][i], 33 + i);
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(frame.get().planes[2][i], 41 + i);
  EXPECT_EQ(frame.get().planes[2][7], 0) << "what the memory lacks";
}

TEST(WholeFrame, BringsWhatWasDrawnBack) {
  Mapped mapped(Mapped::kToLastSample);
  WholeFrame frame(mapped.get(), Touches::kPlanes);
  for (int p = 0; p < 3; ++p) {
    const int bytes = p == 0 ? 32 : 8;
    for (int i = 0; i < bytes; ++i) {
      frame.get().planes[p][i] = static_cast<std::uint8_t>(200 + 10 * p + i % 4);
    }
  }
  frame.write_back();
  for (std::size_t i = 0; i < 32; ++i) EXPECT_EQ(mapped.memory()[i], 200 + i % 4);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(mapped.memory()[32 + i], 210 + i % 4);
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(mapped.memory()[40 + i], 220 + i % 4);
  EXPECT_EQ(mapped.memory()[47], 48) << "behind the memory that was mapped";
}

TEST(WholeFrame, WritesNothingBackWithoutACopy) {
  Mapped mapped(Mapped::kAll);
  const std::vector<std::uint8_t> before = mapped.memory();
  WholeFrame(mapped.get(), Touches::kPlanes).write_back();
  EXPECT_EQ(mapped.memory(), before);
}

// A GstVideoMeta may map in a way of its own, and leave the map empty.
TEST(WholeFrame, TrustsPlanesOutsideOfWhatTheMapTells) {
  std::uint8_t elsewhere[1] = {};
  Mapped mapped(0);
  mapped.get().map[0].data = elsewhere;
  EXPECT_TRUE(is_mapped(WholeFrame(mapped.get(), Touches::kPlanes).get(), mapped.get()));
  mapped.get().map[0].data = nullptr;
  EXPECT_TRUE(is_mapped(WholeFrame(mapped.get(), Touches::kPlanes).get(), mapped.get()));
}

TEST(WholeFrame, TakesTheMapOfEachPlaneWhereThereIsAMeta) {
  Mapped mapped(32);
  GstVideoMeta meta{};
  mapped.get().meta = &meta;
  for (std::size_t p = 1; p < 3; ++p) {
    mapped.get().map[p].data = static_cast<guint8 *>(mapped.get().data[p]);
    mapped.get().map[p].size = 8;
  }
  EXPECT_TRUE(is_mapped(WholeFrame(mapped.get(), Touches::kPlanes).get(), mapped.get()));
  mapped.get().map[2].size = 7;
  EXPECT_FALSE(is_mapped(WholeFrame(mapped.get(), Touches::kPlanes).get(), mapped.get()));
  mapped.get().meta = nullptr;
  EXPECT_FALSE(is_mapped(WholeFrame(mapped.get(), Touches::kSamples).get(), mapped.get()));
}

}  // namespace
}  // namespace nox::noxvisuals
