// noxqrdec in harnesses and pipelines, on generated scenes.
#include <gst/video/gstvideofilter.h>
#include <gtest/gtest.h>
#include <quirc.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "noxvisuals/qr_picture.h"
#include "support/harness.h"
#include "support/log_capture.h"
#include "support/pipeline.h"
#include "support/quick.h"
#include "support/random.h"
#include "support/video_buffer.h"

namespace nox::test {
namespace {

using Messages = std::vector<std::string>;

constexpr const char *kCategory = "noxqrdec";

// The element between two test pads, fed with I420 of the size set last.
class QrDec {
 public:
  QrDec() : harness_(new_harness("noxqrdec")) {}

  GstHarness *get() { return harness_.get(); }
  void set_size(int width, int height) {
    info_ = video_info(GST_VIDEO_FORMAT_I420, width, height);
    gst_harness_set_src_caps(get(), gst_video_info_to_caps(&info_));
  }
  const GstVideoInfo &info() const { return info_; }

  // Pushes the only reference and returns what comes out.
  BufferPtr push(GstBuffer *buffer) { return BufferPtr(gst_harness_push_and_pull(get(), buffer)); }
  BufferPtr push_picture(const QrPicture &picture, int padding = 0) {
    GstBuffer *buffer = padding == 0 ? new_video_buffer(info_) : new_padded_buffer(info_, padding);
    write_picture(buffer, info_, picture.frame());
    return push(buffer);
  }

 private:
  Harness harness_;
  GstVideoInfo info_{};
};

TEST(NoxQrDec, LogsOneCodeAtInfoWithTheElementAsObject) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(320, 240);
  dec.push_picture(QrPicture(320, 240, {"https://example.org/one"}));
  const std::vector<LogLine> lines = log.lines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].message, "Got QR Payload: https://example.org/one");
  EXPECT_EQ(lines[0].level, GST_LEVEL_INFO);
  EXPECT_EQ(lines[0].object, G_OBJECT(dec.get()->element));
}

// What the decoder itself reads from the luma plane, in the order of its indices.
Messages read_directly(const NoxVideoFrame &frame) {
  quirc *decoder = quirc_new();
  quirc_resize(decoder, frame.width, frame.height);
  std::uint8_t *image = quirc_begin(decoder, nullptr, nullptr);
  std::copy_n(frame.planes[0], frame.width * frame.height, image);
  quirc_end(decoder);
  Messages payloads;
  for (int i = 0; i < quirc_count(decoder); ++i) {
    quirc_code code;
    quirc_data data;
    quirc_extract(decoder, i, &code);
    if (quirc_decode(&code, &data) != QUIRC_SUCCESS) continue;
    payloads.emplace_back(reinterpret_cast<const char *>(data.payload));
  }
  quirc_destroy(decoder);
  return payloads;
}

TEST(NoxQrDec, LogsSeveralCodesInIndexOrderOncePerFrame) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(720, 240);
  const QrPicture picture(720, 240, {"left", "middle", "right"});
  const Messages payloads = read_directly(picture.frame());
  ASSERT_EQ(payloads.size(), 3U);
  dec.push_picture(picture);
  dec.push_picture(picture);
  Messages expected;
  for (int frame = 0; frame < 2; ++frame) {
    for (const std::string &payload : payloads) expected.push_back("Got QR Payload: " + payload);
  }
  EXPECT_EQ(log.messages(), expected);
}

TEST(NoxQrDec, ReadsRowsWithPadding) {
  for (const int padding : {1, 4, 64}) {
    SCOPED_TRACE(padding);
    const LogCapture log(kCategory, GST_LEVEL_INFO);
    QrDec dec;
    dec.set_size(320, 240);
    dec.push_picture(QrPicture(320, 240, {"padded"}), padding);
    EXPECT_EQ(log.messages(), Messages{"Got QR Payload: padded"});
  }
}

TEST(NoxQrDec, FollowsSizeChangesInMidStream) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  Messages expected;
  for (const auto &[width, height] : {std::pair{320, 240}, {640, 480}, {160, 120}, {320, 240}}) {
    dec.set_size(width, height);
    const std::string payload = std::to_string(width);
    dec.push_picture(QrPicture(width, height, {payload}));
    expected.push_back("Got QR Payload: " + payload);
  }
  EXPECT_EQ(log.messages(), expected);
}

TEST(NoxQrDec, LeavesEverySampleAlone) {
  QrDec dec;
  dec.set_size(320, 240);
  const QrPicture picture(320, 240, {"untouched"});
  GstBuffer *reference = new_video_buffer(dec.info());
  write_picture(reference, dec.info(), picture.frame());
  const BufferPtr owned(reference);
  const BufferPtr out = dec.push_picture(picture);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(visible_samples(out.get(), dec.info()), visible_samples(reference, dec.info()));
}

TEST(NoxQrDec, KeepsGapFlagAndTimestamps) {
  QrDec dec;
  dec.set_size(64, 64);
  GstBuffer *gap = new_video_buffer(dec.info());
  GST_BUFFER_FLAG_SET(gap, GST_BUFFER_FLAG_GAP);
  GST_BUFFER_PTS(gap) = 7 * GST_SECOND;
  GST_BUFFER_DURATION(gap) = GST_SECOND / 30;
  const BufferPtr out = dec.push(gap);
  ASSERT_NE(out, nullptr);
  EXPECT_TRUE(GST_BUFFER_FLAG_IS_SET(out.get(), GST_BUFFER_FLAG_GAP));
  EXPECT_EQ(GST_BUFFER_PTS(out.get()), 7 * GST_SECOND);
  EXPECT_EQ(GST_BUFFER_DURATION(out.get()), GST_SECOND / 30);

  const BufferPtr plain = dec.push(new_video_buffer(dec.info()));
  EXPECT_FALSE(GST_BUFFER_FLAG_IS_SET(plain.get(), GST_BUFFER_FLAG_GAP));
}

TEST(NoxQrDec, ReadsAFrameFlaggedAsGap) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(320, 240);
  GstBuffer *gap = new_video_buffer(dec.info());
  write_picture(gap, dec.info(), QrPicture(320, 240, {"in a gap"}).frame());
  GST_BUFFER_FLAG_SET(gap, GST_BUFFER_FLAG_GAP);
  dec.push(gap);
  EXPECT_EQ(log.messages(), Messages{"Got QR Payload: in a gap"});
}

TEST(NoxQrDec, IsSilentBelowInfo) {
  for (const GstDebugLevel level : {GST_LEVEL_NONE, GST_LEVEL_ERROR, GST_LEVEL_FIXME}) {
    const LogCapture log(kCategory, level);
    QrDec dec;
    dec.set_size(320, 240);
    dec.push_picture(QrPicture(320, 240, {"unseen"}));
    EXPECT_TRUE(log.lines().empty()) << "threshold " << level;
  }
}

TEST(NoxQrDec, IsSilentWithoutACode) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(320, 240);
  GstBuffer *noise = new_video_buffer(dec.info());
  std::vector<std::uint8_t> bytes(GST_VIDEO_INFO_SIZE(&dec.info()));
  Random(3).fill(bytes.data(), bytes.size());
  gst_buffer_fill(noise, 0, bytes.data(), bytes.size());
  const BufferPtr out = dec.push(noise);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(gst_buffer_memcmp(out.get(), 0, bytes.data(), bytes.size()), 0);
  EXPECT_TRUE(log.lines().empty());
}

TEST(NoxQrDec, PassesEverySizeFromOneByOne) {
  QrDec dec;
  for (const int width : {1, 2, 3, 7, 16, 33}) {
    for (const int height : {1, 2, 5, 21}) {
      SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
      dec.set_size(width, height);
      GstBuffer *buffer = new_video_buffer(dec.info());
      gst_buffer_memset(buffer, 0, 0x5A, GST_VIDEO_INFO_SIZE(&dec.info()));
      const BufferPtr out = dec.push(buffer);
      ASSERT_NE(out, nullptr);
      const std::vector<std::uint8_t> samples = visible_samples(out.get(), dec.info());
      EXPECT_EQ(std::count(samples.begin(), samples.end(), 0x5A),
                static_cast<std::ptrdiff_t>(samples.size()));
    }
  }
}

TEST(NoxQrDec, PassesAHugeFrameUntouched) {
  QrDec dec;
  dec.set_size(8192, 8192);
  const gsize size = GST_VIDEO_INFO_SIZE(&dec.info());
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, size, nullptr);
  gst_buffer_memset(buffer, 0, 0x80, size);
  const BufferPtr out = dec.push(buffer);
  ASSERT_NE(out, nullptr);
  const std::vector<std::uint8_t> expected(size, 0x80);
  EXPECT_EQ(gst_buffer_memcmp(out.get(), 0, expected.data(), size), 0);
}

// Sanitizers and valgrind need far more address space than this test can leave them.
bool address_space_can_be_limited() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return false;
#else
  return !quick();
#endif
}

// In a process of its own: with too little memory for the decoder's image, the frame still passes.
TEST(NoxQrDecDeathTest, StreamGoesOnWhenMemoryRunsOut) {
  if (!address_space_can_be_limited()) GTEST_SKIP() << "needs a limit on the address space";
  const auto push_without_memory = [] {
    QrDec dec;
    dec.set_size(8192, 8192);
    GstBuffer *buffer = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&dec.info()), nullptr);
    const rlimit limit{16 << 20, 16 << 20};
    setrlimit(RLIMIT_AS, &limit);  // less than what is mapped already: no large block can be had
    if (std::malloc(std::size_t{8192} * 8192) != nullptr) std::exit(2);
    const BufferPtr out = dec.push(buffer);
    std::exit(out != nullptr ? 0 : 1);
  };
  EXPECT_EXIT(push_without_memory(), testing::ExitedWithCode(0), "");
}

TEST(NoxQrDec, NegotiatesI420Only) {
  QrDec dec;
  const CapsPtr i420(video_caps(GST_VIDEO_FORMAT_I420, 64, 48));
  const CapsPtr nv12(video_caps(GST_VIDEO_FORMAT_NV12, 64, 48));
  GstPad *sink = gst_element_get_static_pad(dec.get()->element, "sink");
  EXPECT_TRUE(gst_pad_query_accept_caps(sink, i420.get()));
  EXPECT_FALSE(gst_pad_query_accept_caps(sink, nv12.get()));
  gst_object_unref(sink);
}

TEST(NoxQrDec, GivesTheSameCapsOut) {
  QrDec dec;
  dec.set_size(62, 46);
  dec.push(new_video_buffer(dec.info()));
  const CapsPtr in(gst_video_info_to_caps(&dec.info()));
  const CapsPtr out(gst_pad_get_current_caps(dec.get()->sinkpad));
  EXPECT_TRUE(gst_caps_is_equal(in.get(), out.get()));
}

TEST(NoxQrDec, DropsNoLateFrame) {
  QrDec dec;
  EXPECT_FALSE(gst_base_transform_is_qos_enabled(GST_BASE_TRANSFORM(dec.get()->element)));
}

TEST(NoxQrDec, SurvivesDisposeTwice) {
  GstElement *element = gst_element_factory_make("noxqrdec", nullptr);
  ASSERT_NE(element, nullptr);
  gst_object_ref_sink(element);
  g_object_run_dispose(G_OBJECT(element));
  gst_object_unref(element);
}

TEST(NoxQrDec, RunsInAPipelineWithConverters) {
  EXPECT_EQ(
      run_pipeline("videotestsrc num-buffers=5 ! video/x-raw,format=RGB,width=322,height=242 ! "
                   "videoconvert ! noxqrdec ! videoconvert ! video/x-raw,format=BGRx ! fakesink"),
      "");
}

TEST(NoxQrDec, RunsBehindATee) {
  EXPECT_EQ(
      run_pipeline("videotestsrc num-buffers=5 ! video/x-raw,format=I420 ! tee name=t ! queue ! "
                   "noxqrdec ! fakesink t. ! queue ! fakesink"),
      "");
}

TEST(NoxQrDec, RefusesOtherFormatsAtNegotiation) {
  EXPECT_NE(
      run_pipeline("videotestsrc num-buffers=1 ! video/x-raw,format=NV12 ! noxqrdec ! fakesink"),
      "");
}

}  // namespace
}  // namespace nox::test
