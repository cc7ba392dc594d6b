#include "noxvisuals/soak_pipeline.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>

#include "support/video_buffer.h"

namespace nox::test {

namespace {

constexpr GstClockTime kPatience = 60 * GST_SECOND;

gboolean accept_seek(GstAppSrc * /*source*/, guint64 /*position*/, gpointer /*data*/) {
  return TRUE;
}

GstPadProbeReturn count_pens(GstPad * /*pad*/, GstPadProbeInfo *info, gpointer pens) {
  if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_CUSTOM_DOWNSTREAM) {
    ++*static_cast<long *>(pens);
  }
  return GST_PAD_PROBE_OK;
}

bool same_bytes(GstBuffer *a, GstBuffer *b) {
  GstMapInfo map;
  if (gst_buffer_get_size(a) != gst_buffer_get_size(b)) return false;
  gst_buffer_map(a, &map, GST_MAP_READ);
  const bool same = gst_buffer_memcmp(b, 0, map.data, map.size) == 0;
  gst_buffer_unmap(a, &map);
  return same;
}

// Changes the state and waits until it has changed.
bool reach(GstElement *pipeline, GstState state) {
  return gst_element_set_state(pipeline, state) != GST_STATE_CHANGE_FAILURE &&
         gst_element_get_state(pipeline, nullptr, nullptr, kPatience) == GST_STATE_CHANGE_SUCCESS;
}

}  // namespace

SoakPipeline::SoakPipeline(const std::string &element, bool draws)
    : element_(element),
      draws_(draws),
      pipeline_(
          gst_parse_launch(("appsrc name=source stream-type=seekable format=time ! " + element +
                            " name=element ! appsink name=sink sync=false "
                            "async=false")
                               .c_str(),
                           nullptr)),
      source_(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "source")),
      sink_(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "sink")) {
  GstAppSrcCallbacks callbacks{};
  callbacks.seek_data = accept_seek;
  gst_app_src_set_callbacks(GST_APP_SRC(source_.get()), &callbacks, nullptr, nullptr);
  const ObjectPtr<GstElement> under_test(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "element"));
  const ObjectPtr<GstPad> pad(gst_element_get_static_pad(under_test.get(), "src"));
  gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, count_pens, &pens_, nullptr);
  reach(pipeline_.get(), GST_STATE_PLAYING);
}

SoakPipeline::~SoakPipeline() {
  reach(pipeline_.get(), GST_STATE_NULL);
}

void SoakPipeline::set_scene(const SoakScene &scene) {
  const bool resized =
      GST_VIDEO_INFO_WIDTH(&scene.info()) != GST_VIDEO_INFO_WIDTH(&scene_.info()) ||
      GST_VIDEO_INFO_HEIGHT(&scene.info()) != GST_VIDEO_INFO_HEIGHT(&scene_.info());
  scene_ = scene;
  const CapsPtr caps(gst_video_info_to_caps(&scene.info()));
  gst_app_src_set_caps(GST_APP_SRC(source_.get()), caps.get());
  if (!draws_) return;
  // The one under test forgets with the size; the twin of the new size has nothing to forget.
  if (resized || twin_ == nullptr) twin_ = new_harness(element_.c_str());
  gst_harness_set_src_caps(twin_.get(), gst_caps_copy(caps.get()));
}

std::string SoakPipeline::run(int frames, Random *random) {
  std::vector<BufferPtr> in;
  for (int i = 0; i < frames; ++i) {
    GstBuffer *buffer = scene_.next_frame(random);
    GST_BUFFER_PTS(buffer) = time_;
    time_ += GST_SECOND / 30;
    // A buffer with a second owner arrives as one that nobody may write to.
    in.emplace_back(random->chance(0.5) ? gst_buffer_ref(buffer) : gst_buffer_copy_deep(buffer));
    if (gst_app_src_push_buffer(GST_APP_SRC(source_.get()), buffer) != GST_FLOW_OK) {
      return element_ + ": a frame is refused; " + error_on_the_bus();
    }
    ++entered_;
  }
  for (const BufferPtr &buffer : in) {
    const std::string wrong = take(buffer.get());
    if (!wrong.empty()) return element_ + ": " + wrong + "; " + error_on_the_bus();
  }
  return error_on_the_bus();
}

std::string SoakPipeline::take(GstBuffer *in) {
  GstSample *sample = gst_app_sink_try_pull_sample(GST_APP_SINK(sink_.get()), kPatience);
  if (sample == nullptr) return "frame " + std::to_string(entered_) + " does not leave";
  ++left_;
  std::string wrong = compare(in, gst_sample_get_buffer(sample));
  gst_sample_unref(sample);
  return wrong;
}

std::string SoakPipeline::compare(GstBuffer *in, GstBuffer *out) {
  const std::string frame = "frame " + std::to_string(left_);
  if (GST_BUFFER_PTS(in) != GST_BUFFER_PTS(out)) return frame + " leaves with another time";
  if (!draws_) return same_bytes(in, out) ? "" : frame + " leaves changed";
  const BufferPtr drawn(gst_harness_push_and_pull(twin_.get(), gst_buffer_ref(in)));
  if (drawn == nullptr) return "the twin keeps " + frame;
  return same_bytes(drawn.get(), out) ? "" : frame + " is not drawn as a fresh element draws it";
}

std::string SoakPipeline::error_on_the_bus() {
  const ObjectPtr<GstBus> bus(gst_element_get_bus(pipeline_.get()));
  std::string text;
  while (GstMessage *message = gst_bus_pop(bus.get())) {
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
      GError *error = nullptr;
      gst_message_parse_error(message, &error, nullptr);
      text += error->message;
      g_error_free(error);
    }
    gst_message_unref(message);
  }
  return text;
}

std::string SoakPipeline::seek() {
  const gboolean done =
      gst_element_seek_simple(pipeline_.get(), GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH, 0);
  time_ = 0;
  return done != FALSE && reach(pipeline_.get(), GST_STATE_PLAYING) ? "" : "a seek fails";
}

std::string SoakPipeline::happen(SoakEvent event) {
  const auto through = [this](GstState state) {
    const bool there = reach(pipeline_.get(), state) && reach(pipeline_.get(), GST_STATE_PLAYING);
    return there ? std::string() : element_ + ": a change of state fails";
  };
  switch (event) {
    case SoakEvent::kFlush:
      gst_element_send_event(source_.get(), gst_event_new_flush_start());
      gst_element_send_event(source_.get(), gst_event_new_flush_stop(TRUE));
      return "";
    case SoakEvent::kSeek:
      return seek();
    case SoakEvent::kEndAndSeek:
      gst_app_src_end_of_stream(GST_APP_SRC(source_.get()));
      if (gst_app_sink_try_pull_sample(GST_APP_SINK(sink_.get()), kPatience) != nullptr) {
        return element_ + ": one frame too many";
      }
      return seek();
    case SoakEvent::kPause:
      return through(GST_STATE_PAUSED);
    case SoakEvent::kReady:
      return through(GST_STATE_READY);
    case SoakEvent::kNull:
      return through(GST_STATE_NULL);
    default:
      return "";
  }
}

}  // namespace nox::test
