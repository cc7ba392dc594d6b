#include "nox-visuals/stream/newest_frame.h"

#include "nox-visuals/gst_pointers.h"

namespace nox::app {
namespace {

constexpr auto kBufferOrEvent =
    static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM);

// The queue's signal "overrun" also comes for a frame that has left by the time that the queue
// looks again, so frames are counted where they come and where they go.
class DropCount {
 public:
  explicit DropCount(std::atomic<std::uint64_t> *dropped) : dropped_(dropped) {}

  void frame_comes() {
    const std::uint64_t gone = came_++ - left_;
    // One of these may wait in the queue.
    if (gone > 0) count(gone - 1);
  }
  void frame_leaves() { ++left_; }
  void stream_ends() { count(came_ - left_); }

 private:
  void count(std::uint64_t dropped) {
    if (dropped <= counted_) return;
    *dropped_ += dropped - counted_;
    counted_ = dropped;
  }

  std::atomic<std::uint64_t> *dropped_;
  std::atomic<std::uint64_t> came_ = 0;
  std::atomic<std::uint64_t> left_ = 0;
  // No frame comes any more when the end leaves: one thread at a time is here.
  std::uint64_t counted_ = 0;
};

GstPadProbeReturn on_arrival(GstPad * /*pad*/, GstPadProbeInfo * /*info*/, gpointer count) {
  static_cast<DropCount *>(count)->frame_comes();
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn on_departure(GstPad * /*pad*/, GstPadProbeInfo *info, gpointer count) {
  auto *self = static_cast<DropCount *>(count);
  if ((info->type & GST_PAD_PROBE_TYPE_BUFFER) != 0) {
    self->frame_leaves();
  } else if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_EOS) {
    self->stream_ends();
  }
  return GST_PAD_PROBE_OK;
}

void drop_count(gpointer count) {
  delete static_cast<DropCount *>(count);
}

}  // namespace

void keep_newest_only(GstElement *queue, std::atomic<std::uint64_t> *dropped) {
  gst_util_set_object_arg(G_OBJECT(queue), "leaky", "downstream");
  g_object_set(queue, "max-size-buffers", 1U, nullptr);
  auto *count = new DropCount(dropped);
  g_object_set_data_full(G_OBJECT(queue), "nox-drop-count", count, drop_count);
  const GstPointer<GstPad> sink(gst_element_get_static_pad(queue, "sink"));
  const GstPointer<GstPad> src(gst_element_get_static_pad(queue, "src"));
  gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_BUFFER, on_arrival, count, nullptr);
  gst_pad_add_probe(src.get(), kBufferOrEvent, on_departure, count, nullptr);
}

}  // namespace nox::app
