// One element of the module between two pads of ours.
#ifndef FUZZ_ELEMENT_PADS_H_
#define FUZZ_ELEMENT_PADS_H_

#include <gst/gst.h>
#include <gst/video/video.h>

#include <memory>
#include <string>
#include <vector>

namespace nox::fuzz {

// Starts GStreamer with nothing but the module's elements.
void start_gstreamer();

struct BufferDeleter {
  void operator()(GstBuffer *buffer) const { gst_buffer_unref(buffer); }
};
using BufferPtr = std::unique_ptr<GstBuffer, BufferDeleter>;

// A NoxTrackingData event.
struct TrackedPen {
  float x, y;
  bool pressed;
};

class ElementPads {
 public:
  explicit ElementPads(const char *factory);
  ~ElementPads();
  ElementPads(const ElementPads &) = delete;
  ElementPads &operator=(const ElementPads &) = delete;

  GstElement *element() const { return element_; }

  // Sends what a stream begins with; `info` is what the caps tell.
  void begin_stream(const GstVideoInfo &info);
  void send_caps(const GstVideoInfo &info);
  bool send(GstEvent *event) const { return gst_pad_push_event(source_, event) != FALSE; }
  bool send_upstream(GstEvent *event) const { return gst_pad_push_event(sink_, event) != FALSE; }
  void query(GstQuery *query) const;
  // Down to `state` and up again; the stream has to begin anew.
  void restart(GstState state) const;

  // Gives the buffer away.
  GstFlowReturn push(GstBuffer *buffer) const { return gst_pad_push(source_, buffer); }
  // What has come out since the last call.
  std::vector<BufferPtr> take_buffers() { return std::move(buffers_); }
  std::vector<TrackedPen> take_pens() { return std::move(pens_); }

 private:
  static GstFlowReturn chain(GstPad *pad, GstObject *parent, GstBuffer *buffer);
  static gboolean take_event(GstPad *pad, GstObject *parent, GstEvent *event);

  GstElement *element_;
  GstPad *source_;
  GstPad *sink_;
  std::vector<BufferPtr> buffers_;
  std::vector<TrackedPen> pens_;
};

}  // namespace nox::fuzz

#endif  // FUZZ_ELEMENT_PADS_H_
