// An element between two pads of the test's own, in no pipeline: frames are pushed by whichever
// thread, whatever the element or its links go through meanwhile.
#ifndef SUPPORT_PAD_LINE_H_
#define SUPPORT_PAD_LINE_H_

#include <gst/gst.h>
#include <gst/video/video.h>

#include <atomic>

#include "support/harness.h"

namespace nox::test {

class PadLine {
 public:
  // `first` and `last` are one element, or the ends of several that are linked already.
  PadLine(GstElement *first, GstElement *last, const GstVideoInfo &info)
      : source_(gst_pad_new("source", GST_PAD_SRC)),
        sink_(gst_pad_new_from_static_template(&any_caps_, "sink")),
        in_(gst_element_get_static_pad(first, "sink")),
        out_(gst_element_get_static_pad(last, "src")) {
    gst_pad_set_chain_function(sink_.get(), count_frame);
    gst_pad_set_event_function(sink_.get(), take_event);
    gst_pad_set_element_private(sink_.get(), this);
    gst_pad_set_active(source_.get(), TRUE);
    gst_pad_set_active(sink_.get(), TRUE);
    link_source();
    link_sink();
    set_info(info);
  }
  PadLine(GstElement *element, const GstVideoInfo &info) : PadLine(element, element, info) {}
  ~PadLine() {
    unlink_source();
    unlink_sink();
    gst_pad_set_active(source_.get(), FALSE);
    gst_pad_set_active(sink_.get(), FALSE);
  }
  PadLine(const PadLine &) = delete;
  PadLine &operator=(const PadLine &) = delete;

  // Takes over the buffer. One thread at a time.
  GstFlowReturn push(GstBuffer *buffer) {
    const GstFlowReturn flow = gst_pad_push(source_.get(), buffer);
    if (flow == GST_FLOW_OK) ++passed_;
    return flow;
  }
  // The frames whose push went well, and those that came out.
  int passed() const { return passed_; }
  int received() const { return received_; }

  GstPad *sink() { return sink_.get(); }
  void link_source() { gst_pad_link(source_.get(), in_.get()); }
  void unlink_source() { gst_pad_unlink(source_.get(), in_.get()); }
  void link_sink() { gst_pad_link(out_.get(), sink_.get()); }
  void unlink_sink() { gst_pad_unlink(out_.get(), sink_.get()); }

 private:
  void set_info(const GstVideoInfo &info) {
    gst_pad_push_event(source_.get(), gst_event_new_stream_start("pad-line"));
    const CapsPtr caps(gst_video_info_to_caps(&info));
    gst_pad_push_event(source_.get(), gst_event_new_caps(caps.get()));
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    gst_pad_push_event(source_.get(), gst_event_new_segment(&segment));
  }

  static GstFlowReturn count_frame(GstPad *pad, GstObject * /*parent*/, GstBuffer *buffer) {
    ++static_cast<PadLine *>(gst_pad_get_element_private(pad))->received_;
    gst_buffer_unref(buffer);
    return GST_FLOW_OK;
  }
  static gboolean take_event(GstPad * /*pad*/, GstObject * /*parent*/, GstEvent *event) {
    gst_event_unref(event);
    return TRUE;
  }

  // Without a template the sink would take no caps but the first.
  static inline GstStaticPadTemplate any_caps_ =
      GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS_ANY);

  std::atomic<int> passed_{0};
  std::atomic<int> received_{0};
  ObjectPtr<GstPad> source_;
  ObjectPtr<GstPad> sink_;
  ObjectPtr<GstPad> in_;
  ObjectPtr<GstPad> out_;
};

}  // namespace nox::test

#endif  // SUPPORT_PAD_LINE_H_
