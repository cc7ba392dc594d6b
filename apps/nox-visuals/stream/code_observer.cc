#include "nox-visuals/stream/code_observer.h"

#include <gst/video/video.h>

#include <utility>
#include <vector>

#include "nox-visuals/gst_pointers.h"

namespace nox::app {

CodeObserver::CodeObserver(Readers readers, Counts *counts, std::function<void(Observation)> push)
    : readers_(std::move(readers)), counts_(counts), push_(std::move(push)) {}

void CodeObserver::go_live() {
  Observer::go_live();
  if (readers_.slow.empty()) return;
  const auto found = [this](Code code, bool first) {
    if (first) ++counts_->found;
    push_(std::move(code));
  };
  background_ = std::make_unique<BackgroundReader>(std::exchange(readers_.slow, {}), found);
}

void CodeObserver::attach(GstElement *eye) {
  const GstPointer<GstPad> sink(gst_element_get_static_pad(eye, "sink"));
  gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_BUFFER, on_buffer, this, nullptr);
}

void CodeObserver::finish() {
  if (background_ != nullptr) background_->finish();
}

GstPadProbeReturn CodeObserver::on_buffer(GstPad *pad, GstPadProbeInfo *info, gpointer observer) {
  static_cast<CodeObserver *>(observer)->look(pad, GST_PAD_PROBE_INFO_BUFFER(info));
  return GST_PAD_PROBE_OK;
}

void CodeObserver::look(GstPad *pad, GstBuffer *buffer) {
  ++counts_->frames;
  const Moment when = moment_of(buffer);
  const GstPointer<GstCaps> caps(gst_pad_get_current_caps(pad));
  GstVideoInfo info;
  GstVideoFrame frame;
  if (caps == nullptr || gst_video_info_from_caps(&info, caps.get()) == FALSE) return;
  if (gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ) == FALSE) return;
  read(when, {static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)),
              GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0), GST_VIDEO_FRAME_WIDTH(&frame),
              GST_VIDEO_FRAME_HEIGHT(&frame)});
  gst_video_frame_unmap(&frame);
}

void CodeObserver::read(const Moment &when, const qr::Luma &picture) {
  std::vector<Code> codes = read_with_all(readers_, picture);
  if (!codes.empty()) ++counts_->found;
  for (Code &code : codes) {
    code.when = when;
    push_(code);
  }
  if (background_ != nullptr) background_->offer(when, picture, std::move(codes));
}

}  // namespace nox::app
