#include "nox-visuals/stream/stream.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/stream/missing_plugin.h"
#include "nox-visuals/stream/newest_frame.h"
#include "nox-visuals/stream/pipeline.h"
#include "nox-visuals/stream/progress.h"
#include "nox-visuals/stream/signals.h"

namespace nox::app {
namespace {

constexpr guint kLookMs = 200;
// For a pipeline to end by itself when it is asked to; a file is worth a longer wait.
constexpr guint kFinishMs = 3000;
constexpr guint kFinishFileMs = 30'000;
constexpr double kFirstWait = 0.5;
constexpr gint64 kSilenceUs = 10'000'000;  // a camera without a frame for so long is gone

std::string error_text(GstMessage *message) {
  GError *error = nullptr;
  gst_message_parse_error(message, &error, nullptr);
  return take_error(error);
}

// What autovideosink says before it shows nothing.
std::optional<std::string> resource_warning(GstMessage *message) {
  GError *error = nullptr;
  gst_message_parse_warning(message, &error, nullptr);
  const bool resource = error->domain == GST_RESOURCE_ERROR;
  const std::string text = take_error(error);
  return resource ? std::optional(text) : std::nullopt;
}

bool is_from_sink(GstMessage *message) {
  GstObject *element = GST_MESSAGE_SRC(message);
  return !GST_IS_PIPELINE(element) && GST_OBJECT_FLAG_IS_SET(element, GST_ELEMENT_FLAG_SINK);
}

// In place of the next frame: a decoder may hold hundreds of them that are not to be waited for.
GstPadProbeReturn end_instead(GstPad *pad, GstPadProbeInfo * /*info*/, gpointer /*data*/) {
  gst_pad_push_event(pad, gst_event_new_eos());
  return GST_PAD_PROBE_DROP;
}

std::string seconds(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g s", value);
  return text;
}

// Of a stream whose length is known.
std::optional<double> part_done(GstElement *pipeline) {
  gint64 position = 0;
  gint64 duration = 0;
  if (gst_element_query_position(pipeline, GST_FORMAT_TIME, &position) == FALSE ||
      gst_element_query_duration(pipeline, GST_FORMAT_TIME, &duration) == FALSE || duration <= 0) {
    return {};
  }
  return std::clamp(static_cast<double>(position) / static_cast<double>(duration), 0.0, 1.0);
}

}  // namespace

Stream::Stream(Counts *counts) : counts_(counts), loop_(g_main_loop_new(nullptr, FALSE)) {}

Stream::~Stream() {
  drop_pipeline();
  g_main_loop_unref(loop_);
}

void Stream::build() {
  missing_.clear();
  pipeline_ = make_pipeline(plan_.source, plan_.tail);
  const GstPointer<GstBus> bus(gst_element_get_bus(pipeline_.get()));
  bus_watch_ = gst_bus_add_watch(bus.get(), on_message, this);
  plan_.started(pipeline_.get());
  const auto paused = gst_element_set_state(pipeline_.get(), GST_STATE_PAUSED);
  if (paused == GST_STATE_CHANGE_NO_PREROLL) {
    live_ = true;
    keep_newest_only(arrivals().get(), &counts_->dropped);
  }
}

GstPointer<GstElement> Stream::arrivals() const {
  return GstPointer<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline_.get()), kArrivals));
}

void Stream::open(StreamPlan plan) {
  plan_ = std::move(plan);
  build();
}

void Stream::drop_pipeline() {
  if (pipeline_ == nullptr) return;
  gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  g_source_remove(bus_watch_);
  pipeline_.reset();
}

Failure Stream::run() {
  std::optional<SignalWatch> signals(std::in_place, [this] { finish(); });
  started_us_ = last_frame_us_ = g_get_monotonic_time();
  const guint look_timer = g_timeout_add(kLookMs, on_look, this);
  gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  g_main_loop_run(loop_);
  // Whatever may still take long: another signal ends the program at once.
  signals.reset();
  for (guint *timer : {&retry_timer_, &finish_timer_}) {
    if (*timer != 0) g_source_remove(std::exchange(*timer, 0));
  }
  g_source_remove(look_timer);
  drop_pipeline();
  show_progress("");
  return failure_;
}

void Stream::stop() {
  stop_ = true;
}

// The pipeline is given the chance to end by itself, so that files are finished.
void Stream::finish() {
  if (std::exchange(finishing_, true)) return;
  plan_.hurry();
  if (pipeline_ != nullptr && !live_) {
    const GstPointer<GstPad> src(gst_element_get_static_pad(arrivals().get(), "src"));
    gst_pad_add_probe(src.get(), GST_PAD_PROBE_TYPE_BUFFER, end_instead, nullptr, nullptr);
  }
  if (pipeline_ == nullptr ||
      gst_element_send_event(pipeline_.get(), gst_event_new_eos()) == FALSE) {
    g_main_loop_quit(loop_);
  } else {
    finish_timer_ = g_timeout_add(plan_.file.empty() ? kFinishMs : kFinishFileMs, on_late, this);
  }
}

bool Stream::returns() const {
  return plan_.retry && !finishing_ && comes_back(plan_.source, live_);
}

void Stream::handle(GstMessage *message) {
  switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
      if (is_from_sink(message)) {
        output_failed(GST_MESSAGE_SRC_NAME(message), error_text(message));
        break;
      }
      source_failed(missing_.empty() ? error_text(message) : "GStreamer lacks " + missing_);
      break;
    case GST_MESSAGE_WARNING:
      if (const auto why = resource_warning(message); why && is_from_sink(message)) {
        output_failed(GST_MESSAGE_SRC_NAME(message), *why);
      }
      break;
    case GST_MESSAGE_EOS:
      if (returns()) {
        source_failed("the stream ended");
      } else {
        g_main_loop_quit(loop_);
      }
      break;
    case GST_MESSAGE_ELEMENT:
      if (missing_.empty()) missing_ = missing_plugin(message);
      break;
    default:
      break;
  }
}

void Stream::output_failed(const std::string &sink, const std::string &why) {
  if (failure_.why.empty()) {
    failure_ = {(sink == kFileSink ? plan_.file : "--preview") + ": " + why, true};
  }
  g_main_loop_quit(loop_);
}

void Stream::source_failed(const std::string &why) {
  // What never was there does not come back: a wrong address is said at once.
  if (!returns() || (counts_->frames == 0 && !away_)) {
    if (!finishing_) failure_ = {plan_.word + ": " + why};
    g_main_loop_quit(loop_);
    return;
  }
  drop_pipeline();
  plan_.gone();
  if (!std::exchange(away_, true)) {
    say(plan_.word + " went away: " + why + "; it is tried again, at least every " +
        seconds(*plan_.retry));
    next_wait_ = std::min(kFirstWait, *plan_.retry);
  }
  retry_timer_ = g_timeout_add(static_cast<guint>(next_wait_ * 1000), on_retry, this);
  next_wait_ = std::min(next_wait_ * 2, *plan_.retry);
}

void Stream::try_again() {
  retry_timer_ = 0;
  frames_seen_ = counts_->frames;
  last_frame_us_ = g_get_monotonic_time();
  try {
    build();
    gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  } catch (const StreamError &error) {
    source_failed(error.what());
  }
}

// What is seen by looking from time to time.
void Stream::look() {
  if (stop_) finish();
  if (pipeline_ != nullptr) look_for_frames();
  if (can_show_progress()) tell_progress();
}

void Stream::look_for_frames() {
  const gint64 now = g_get_monotonic_time();
  if (counts_->frames > frames_seen_) {
    frames_seen_ = counts_->frames;
    last_frame_us_ = now;
    if (std::exchange(away_, false)) say(plan_.word + " is back");
  } else if (now - last_frame_us_ > kSilenceUs && returns() && frames_seen_ > 0) {
    source_failed("no frame came for " + seconds(static_cast<double>(kSilenceUs) / 1e6));
  }
}

void Stream::tell_progress() {
  ProgressState state;
  state.frames = counts_->frames;
  state.dropped = counts_->dropped;
  state.elapsed_s = static_cast<double>(g_get_monotonic_time() - started_us_) / 1e6;
  if (!live_ && pipeline_ != nullptr) state.part = part_done(pipeline_.get());
  show_progress(progress_line(state, progress_columns()));
}

gboolean Stream::on_message(GstBus * /*bus*/, GstMessage *message, gpointer stream) {
  static_cast<Stream *>(stream)->handle(message);
  return G_SOURCE_CONTINUE;
}

gboolean Stream::on_retry(gpointer stream) {
  static_cast<Stream *>(stream)->try_again();
  return G_SOURCE_REMOVE;
}

gboolean Stream::on_look(gpointer stream) {
  static_cast<Stream *>(stream)->look();
  return G_SOURCE_CONTINUE;
}

gboolean Stream::on_late(gpointer stream) {
  auto *self = static_cast<Stream *>(stream);
  self->finish_timer_ = 0;
  if (!self->plan_.file.empty()) self->output_failed(kFileSink, "it could not be finished in time");
  g_main_loop_quit(self->loop_);
  return G_SOURCE_REMOVE;
}

}  // namespace nox::app
