// The three elements behind real pads: caps, buffers of any layout in any memory, events, queries,
// flushes and changes of state, in any order. As many frames leave as enter; the drawing and the
// pens are compared with the plain vectorizer and with a tracker of its own, and the frames of the
// elements that only look with what entered.
#include <gst/video/video.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "element_pads.h"
#include "fuzz_input.h"
#include "gst_layout.h"
#include "pentracker/pen_tracker.h"
#include "vectorizer/vectorizer_plain.h"

namespace {

using nox::fuzz::BufferPtr;
using nox::fuzz::ElementPads;
using nox::fuzz::GstLayout;
using nox::fuzz::Input;
using nox::fuzz::PackedPicture;
using nox::fuzz::require;
using nox::fuzz::TrackedPen;

constexpr std::int32_t kLargest = 80;
// What one input may cost: the tracker's frames take ten times the others' time, and a vectorizer's
// edges show after 100.
constexpr int kMostSteps = 60;
constexpr int kMostTrackedFrames = 20;
constexpr int kMostFrames = 130;

enum Kind { kPenTracker, kVectorizer, kQrDec, kKinds };
constexpr const char *kFactories[kKinds] = {"noxpentracker", "noxvectorizer", "noxqrdec"};

struct TrackerDeleter {
  void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
};

class Session {
 public:
  explicit Session(Input *input)
      : input_(input), kind_(static_cast<Kind>(input->next() % kKinds)), pads_(kFactories[kind_]) {
    if (kind_ == kPenTracker) tracker_.reset(pen_tracker_new());
    change_caps();
    pads_.begin_stream(info_);
    layout_.emplace(input_, info_);
  }

  bool is_over() const {
    return frames_ >= (kind_ == kPenTracker ? kMostTrackedFrames : kMostFrames);
  }

  void step() {
    const std::uint8_t choice = input_->next();
    switch (choice % 16) {
      case 0:
        change_caps();
        pads_.send_caps(info_);
        layout_.emplace(input_, info_);
        break;
      case 1:
        layout_.emplace(input_, info_);
        break;
      case 2:
        send_an_event();
        break;
      case 3:
        pads_.send(gst_event_new_flush_start());
        require(!push(), "a frame passes during a flush");
        pads_.send(gst_event_new_flush_stop(TRUE));
        pads_.begin_stream(info_);
        break;
      case 4:
        restart(static_cast<GstState>(input_->between(GST_STATE_NULL, GST_STATE_PAUSED)));
        break;
      case 5:
        pads_.send(gst_event_new_eos());
        require(!push(), "a frame passes behind the end");
        restart(GST_STATE_READY);
        break;
      case 6:
        ask();
        break;
      case 7:
        send_an_upstream_event();
        break;
      default:
        for (int i = choice / 16; i >= 0 && !is_over(); --i) require(push(), "a frame is lost");
    }
  }

 private:
  void change_caps() {
    const GstVideoFormat format =
        input_->flag() && kind_ != kQrDec ? GST_VIDEO_FORMAT_A420 : GST_VIDEO_FORMAT_I420;
    const auto width = static_cast<guint>(input_->between(1, kLargest));
    const auto height = static_cast<guint>(input_->between(1, kLargest));
    gst_video_info_set_format(&info_, format, width, height);
    GST_VIDEO_INFO_FPS_N(&info_) = input_->next();
    GST_VIDEO_INFO_FPS_D(&info_) = 1;
  }

  void restart(GstState state) {
    pads_.restart(state);
    pads_.begin_stream(info_);
  }

  // Pushes a frame; false when none comes out.
  bool push() {
    ++frames_;
    GstBuffer *buffer = layout_->new_buffer(input_);
    const BufferPtr before(gst_buffer_copy_deep(buffer));
    const std::uint8_t kind = input_->next();
    if (kind % 4 == 1) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_GAP);
    if (kind % 4 == 2) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
    GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(input_->next()) * GST_MSECOND;
    // Somebody else who holds the buffer, or only its memory.
    const BufferPtr holder(kind / 4 % 4 == 1 ? gst_buffer_ref(buffer) : nullptr);
    const BufferPtr sharer(kind / 4 % 4 == 2 ? gst_buffer_copy(buffer) : nullptr);
    const GstClockTime time = GST_BUFFER_PTS(buffer);
    const GstFlowReturn flow = pads_.push(buffer);
    const std::vector<BufferPtr> out = pads_.take_buffers();
    require(out.size() == (flow == GST_FLOW_OK ? 1U : 0U), "the count of frames");
    for (const BufferPtr *other : {&holder, &sharer}) {
      require(*other == nullptr || same_bytes(other->get(), before.get()), "another's memory");
    }
    if (out.empty()) {
      require(pads_.take_pens().empty(), "an event without a frame");
      return false;
    }
    require(GST_BUFFER_PTS(out[0].get()) == time, "the time of a frame");
    check(before.get(), out[0].get());
    return true;
  }

  static bool same_bytes(GstBuffer *a, GstBuffer *b) {
    GstMapInfo map;
    require(gst_buffer_map(a, &map, GST_MAP_READ) != FALSE, "a buffer is mapped");
    const bool same =
        gst_buffer_get_size(b) == map.size && gst_buffer_memcmp(b, 0, map.data, map.size) == 0;
    gst_buffer_unmap(a, &map);
    return same;
  }

  void check(GstBuffer *in, GstBuffer *out) {
    PackedPicture picture(layout_->format(), layout_->width(), layout_->height());
    layout_->read(in, &picture);
    if (kind_ == kVectorizer) {
      plain_.process(picture.get(), picture.get());
      require(layout_->is_drawn(in, out, &picture), "a drawing");
      return;
    }
    require(same_bytes(in, out), "a frame leaves changed");
    if (kind_ == kPenTracker) check_pen(picture);
  }

  void check_pen(const PackedPicture &picture) {
    NoxVideoFrame frame = picture.get();
    float x = 0, y = 0;
    std::int32_t pressed = 0;
    const int found = pen_tracker_process(tracker_.get(), &frame, &frame, &x, &y, &pressed);
    const std::vector<TrackedPen> pens = pads_.take_pens();
    require(pens.size() == (found != 0 ? 1U : 0U), "the count of events");
    for (const TrackedPen &pen : pens) {
      require(std::bit_cast<std::uint32_t>(pen.x) == std::bit_cast<std::uint32_t>(x) &&
                  std::bit_cast<std::uint32_t>(pen.y) == std::bit_cast<std::uint32_t>(y) &&
                  pen.pressed == (pressed != 0),
              "where the pen is");
    }
  }

  void send_an_event() {
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    segment.rate = input_->flag() ? 1.0 : -2.0;
    switch (input_->next() % 7) {
      case 0:
        pads_.send(gst_event_new_segment(&segment));
        break;
      case 1:
        pads_.send(gst_event_new_gap(input_->next() * GST_SECOND, GST_SECOND));
        break;
      case 2:
        pads_.send(gst_event_new_tag(gst_tag_list_new(GST_TAG_TITLE, "a title", nullptr)));
        break;
      case 3:
        pads_.send(gst_event_new_custom(GST_EVENT_CUSTOM_DOWNSTREAM_OOB,
                                        gst_structure_new_empty("anything")));
        break;
      case 4:
        pads_.send(gst_event_new_segment_done(GST_FORMAT_TIME, 0));
        break;
      case 5:
        pads_.send_caps(info_);
        break;
      default:
        pads_.begin_stream(info_);
    }
  }

  void send_an_upstream_event() {
    switch (input_->next() % 4) {
      case 0:
        pads_.send_upstream(gst_event_new_reconfigure());
        break;
      case 1:
        pads_.send_upstream(gst_event_new_qos(GST_QOS_TYPE_UNDERFLOW, 0.1, GST_SECOND, 0));
        break;
      case 2:
        pads_.send_upstream(gst_event_new_latency(GST_MSECOND));
        break;
      default:
        pads_.send_upstream(gst_event_new_seek(1.0, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                               GST_SEEK_TYPE_SET, 0, GST_SEEK_TYPE_NONE, 0));
    }
  }

  void ask() {
    GstCaps *caps = gst_video_info_to_caps(&info_);
    switch (input_->next() % 5) {
      case 0:
        pads_.query(gst_query_new_caps(nullptr));
        break;
      case 1:
        pads_.query(gst_query_new_accept_caps(caps));
        break;
      case 2:
        pads_.query(gst_query_new_allocation(caps, TRUE));
        break;
      case 3:
        pads_.query(gst_query_new_latency());
        break;
      default:
        pads_.query(gst_query_new_position(GST_FORMAT_TIME));
    }
    gst_caps_unref(caps);
  }

  Input *input_;
  Kind kind_;
  ElementPads pads_;
  GstVideoInfo info_{};
  std::optional<GstLayout> layout_;
  int frames_ = 0;
  nox::test::PlainVectorizer plain_;
  std::unique_ptr<PenTracker, TrackerDeleter> tracker_;  // beside the element's own
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  static const bool started = (nox::fuzz::start_gstreamer(), true);
  static_cast<void>(started);
  Input input(bytes, size);
  Session session(&input);
  for (int i = 0; i < kMostSteps && !input.empty() && !session.is_over(); ++i) session.step();
  return 0;
}
