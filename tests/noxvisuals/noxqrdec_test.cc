// noxqrdec in harnesses and pipelines, on generated scenes.
#include <gst/video/gstvideofilter.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "qr/decoder.h"
#include "scenes/qr_scene.h"
#include "support/harness.h"
#include "support/log_capture.h"
#include "support/log_file.h"
#include "support/pipeline.h"
#include "support/qr_picture.h"
#include "support/quick.h"
#include "support/random.h"
#include "support/short_buffers.h"
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

// What the core reads from the luma plane, as the element logs it: in the order of the decoder's
// indices, and only up to a NUL.
Messages lines_of_the_core(const qr::Luma &luma) {
  qr::Decoder decoder;
  decoder.decode(luma);
  Messages lines;
  for (const qr::Code &code : decoder.codes()) {
    if (code.error == nullptr)
      lines.push_back("Got QR Payload: " + code.payload.substr(0, code.payload.find('\0')));
  }
  return lines;
}
Messages lines_of_the_core(const NoxVideoFrame &frame) {
  return lines_of_the_core({frame.planes[0], frame.strides[0], frame.width, frame.height});
}

TEST(NoxQrDec, LogsSeveralCodesInIndexOrderOncePerFrame) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(720, 240);
  const QrPicture picture(720, 240, {"left", "middle", "right"});
  Messages expected = lines_of_the_core(picture.frame());
  ASSERT_EQ(expected.size(), 3U);
  dec.push_picture(picture);
  dec.push_picture(picture);
  expected.insert(expected.end(), {expected[0], expected[1], expected[2]});
  EXPECT_EQ(log.messages(), expected);
}

TEST(NoxQrDec, LogsAPayloadUpToItsFirstNul) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(320, 240);
  dec.push_picture(QrPicture(320, 240, {std::string("seen\0unseen", 11)}));
  EXPECT_EQ(log.messages(), Messages{"Got QR Payload: seen"});
}

// Line ends, control characters and what is not UTF-8: nothing is escaped, replaced or left out.
const std::string kRawPayloads[] = {
    "first\nGot QR Payload: second",
    "back\rover\bit",
    "\x1B[2J\x1B[31mred\x1B]0;title\x07",
    "bad \xFF\xFE\xC3(",
    "%s%n%d",
};

TEST(NoxQrDec, LogsAPayloadAsItIs) {
  for (const std::string &payload : kRawPayloads) {
    const LogCapture log(kCategory, GST_LEVEL_INFO);
    QrDec dec;
    dec.set_size(320, 240);
    dec.push_picture(QrPicture(320, 240, {payload}));
    EXPECT_EQ(log.messages(), Messages{"Got QR Payload: " + payload});
  }
}

// A code can forge a line of the log, and a reader of the log has to know.
TEST(NoxQrDec, ItsLineReachesTheLogAsItIs) {
  for (const std::string &payload : kRawPayloads) {
    LogFile log(kCategory, GST_LEVEL_INFO);
    QrDec dec;
    dec.set_size(320, 240);
    dec.push_picture(QrPicture(320, 240, {payload}));
    EXPECT_NE(log.text().find("Got QR Payload: " + payload + "\n"), std::string::npos);
  }
}

TEST(NoxQrDec, LogsWhatTheCoreReads) {
  const int frames = quick() ? 4 : 40;
  NoxVideoFrame frame;
  nox_video_frame_alloc(&frame, kNoxFormatI420, 640, 240);
  scenes::QrScene scene(640, 240, {"one", std::string("t\0wo", 4), "three: a longer text"});
  QrDec dec;
  dec.set_size(640, 240);
  std::size_t read = 0;
  for (int index = 0; index < frames; ++index) {
    SCOPED_TRACE(index);
    const LogCapture log(kCategory, GST_LEVEL_INFO);
    scene.render(static_cast<std::uint32_t>(index) * 7, &frame);
    GstBuffer *buffer = new_video_buffer(dec.info());
    write_picture(buffer, dec.info(), frame);
    dec.push(buffer);
    const Messages expected = lines_of_the_core(frame);
    EXPECT_EQ(log.messages(), expected);
    read += expected.size();
  }
  EXPECT_GT(read, static_cast<std::size_t>(2 * frames));
  nox_video_frame_free_planes(&frame);
}

// Adds what the core reads from the buffers that pass a pad to the list given as data.
GstPadProbeReturn read_with_the_core(GstPad *pad, GstPadProbeInfo *probe, gpointer lines) {
  const CapsPtr caps(gst_pad_get_current_caps(pad));
  GstVideoInfo info;
  GstVideoFrame frame;
  gst_video_info_from_caps(&info, caps.get());
  gst_video_frame_map(&frame, &info, GST_PAD_PROBE_INFO_BUFFER(probe), GST_MAP_READ);
  const auto *samples = static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
  const Messages read =
      lines_of_the_core({samples, GST_VIDEO_FRAME_COMP_STRIDE(&frame, 0), info.width, info.height});
  gst_video_frame_unmap(&frame);
  auto *all = static_cast<Messages *>(lines);
  all->insert(all->end(), read.begin(), read.end());
  return GST_PAD_PROBE_OK;
}

// Real photographs, where they lie beside the project.
TEST(NoxQrDec, LogsWhatTheCoreReadsFromPhotographs) {
  const char *folder = std::getenv("NOX_QR_PHOTOS");
  if (folder == nullptr || !std::filesystem::exists(folder)) {
    GTEST_SKIP() << "no photographs of QR codes beside the project";
  }
  if (quick()) GTEST_SKIP() << "takes too long here";
  std::size_t read = 0;
  for (const auto &file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".png") continue;
    SCOPED_TRACE(file.path());
    const LogCapture log(kCategory, GST_LEVEL_INFO);
    Messages expected;
    const std::string description =
        "filesrc location=" + file.path().string() +
        " ! pngdec ! videoconvert ! video/x-raw,format=I420 ! noxqrdec name=dec ! fakesink";
    const std::string error = run_pipeline(description, [&expected](GstElement *pipeline) {
      const ObjectPtr<GstElement> dec(gst_bin_get_by_name(GST_BIN(pipeline), "dec"));
      const ObjectPtr<GstPad> sink(gst_element_get_static_pad(dec.get(), "sink"));
      gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_BUFFER, read_with_the_core, &expected,
                        nullptr);
    });
    EXPECT_EQ(error, "");
    EXPECT_EQ(log.messages(), expected);
    read += expected.size();
  }
  EXPECT_GT(read, 0U);
}

TEST(NoxQrDec, LogsOneCodeOnceBehindAFrameOfThree) {
  const LogCapture log(kCategory, GST_LEVEL_INFO);
  QrDec dec;
  dec.set_size(720, 240);
  dec.push_picture(QrPicture(720, 240, {"left", "middle", "right"}));
  ASSERT_EQ(log.lines().size(), 3U);
  dec.push_picture(QrPicture(720, 240, {"middle"}));
  ASSERT_EQ(log.lines().size(), 4U);
  EXPECT_EQ(log.messages().back(), "Got QR Payload: middle");
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

TEST(NoxQrDec, ReadsBuffersWhoseMemoryEndsEarly) {
  const GstVideoInfo info = video_info(GST_VIDEO_FORMAT_I420, 320, 240);
  const BufferPtr whole(new_video_buffer(info));
  write_picture(whole.get(), info, QrPicture(320, 240, {"short"}).frame());
  for (const ShortBuffer &buffer : short_buffers(whole.get(), info)) {
    SCOPED_TRACE(buffer.layout);
    const LogCapture log(kCategory, GST_LEVEL_INFO);
    QrDec dec;
    dec.set_size(320, 240);
    const BufferPtr out = dec.push(gst_buffer_ref(buffer.buffer.get()));
    EXPECT_EQ(log.messages(), Messages{"Got QR Payload: short"});
    EXPECT_EQ(visible_samples(out.get(), info), visible_samples(whole.get(), info));
  }
}

TEST(NoxQrDec, PassesABufferWithADividedPlane) {
  QrDec dec;
  dec.set_size(320, 240);
  EXPECT_NE(dec.push(buffer_with_a_divided_plane(dec.info()).release()), nullptr);
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
