#include "nox-visuals/doctor/scene_look.h"

#include <gst/video/video.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <tuple>
#include <utility>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/stream/pen_observer.h"
#include "nox-visuals/stream/stream.h"

namespace nox::app {
namespace {

constexpr std::uint64_t kFrames = 150;
constexpr guint kPatienceMs = 10000;
constexpr std::uint8_t kThreshold = 170;  // of the tracker

// A pen close to the camera stays below these; what is above them is the room.
constexpr double kManyBright = 0.05;
constexpr double kManyColoured = 0.1;
constexpr double kSlowMs = 33;

// The samples above the threshold of all frames so far.
class Shares {
 public:
  void attach(GstElement *tracker) {
    const GstPointer<GstPad> sink(gst_element_get_static_pad(tracker, "sink"));
    gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_BUFFER, on_buffer, this, nullptr);
  }

  int width() const { return width_; }
  int height() const { return height_; }
  double above(int plane) const {
    return samples_[plane] == 0 ? 0 : above_[plane] / samples_[plane];
  }

 private:
  static GstPadProbeReturn on_buffer(GstPad *pad, GstPadProbeInfo *info, gpointer shares) {
    const GstPointer<GstCaps> caps(gst_pad_get_current_caps(pad));
    GstVideoInfo video;
    GstVideoFrame frame;
    GstBuffer *buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    if (caps == nullptr || gst_video_info_from_caps(&video, caps.get()) == FALSE ||
        gst_video_frame_map(&frame, &video, buffer, GST_MAP_READ) == FALSE) {
      return GST_PAD_PROBE_OK;
    }
    for (int plane = 0; plane < 3; ++plane) static_cast<Shares *>(shares)->add(frame, plane);
    gst_video_frame_unmap(&frame);
    return GST_PAD_PROBE_OK;
  }

  void add(const GstVideoFrame &frame, int plane) {
    const int width = GST_VIDEO_FRAME_COMP_WIDTH(&frame, plane);
    const int height = GST_VIDEO_FRAME_COMP_HEIGHT(&frame, plane);
    if (plane == 0) std::tie(width_, height_) = std::pair(width, height);
    const auto *row = static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane));
    for (int y = 0; y < height; ++y, row += GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane)) {
      above_[plane] += static_cast<double>(
          std::count_if(row, row + width, [](std::uint8_t sample) { return sample > kThreshold; }));
    }
    samples_[plane] += double{1} * width * height;
  }

  int width_ = 0, height_ = 0;
  std::array<double, 3> samples_{}, above_{};
};

gboolean stop_late(gpointer stream) {
  static_cast<Stream *>(stream)->stop();
  return G_SOURCE_REMOVE;
}

std::string milliseconds(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f ms", value);
  return text.data();
}

double of_sorted(const std::vector<double> &sorted, double share) {
  return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
}

Finding look_at_rate(const SceneLook &look) {
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%dx%d, %llu frames in %.1f s, %llu dropped", look.width,
                look.height, static_cast<unsigned long long>(look.totals.frames), look.seconds,
                static_cast<unsigned long long>(look.totals.dropped));
  const bool too_slow = look.totals.dropped * 10 > look.totals.frames;
  return {too_slow ? Verdict::kWarn : Verdict::kOk, "source", text.data(),
          too_slow ? "a smaller picture, or fewer programs on this machine" : ""};
}

Finding look_at_light(const SceneLook &look) {
  const std::string text = percent(look.bright) + " above 170";
  if (look.bright <= kManyBright) return {Verdict::kOk, "light", text, ""};
  return {Verdict::kWarn, "light", text,
          "a shorter exposure, a darker room, nothing white in view"};
}

Finding look_at_colours(const SceneLook &look) {
  const std::string text = percent(look.coloured) + " blue or red above 170";
  if (look.coloured <= kManyColoured) return {Verdict::kOk, "colours", text, ""};
  return {Verdict::kWarn, "colours", text,
          "less saturation, no screens and no vivid cloth in view"};
}

Finding look_at_pen(const SceneLook &look) {
  const double share =
      static_cast<double>(look.totals.found) / static_cast<double>(look.totals.frames);
  return {Verdict::kOk, "pen",
          "in " + percent(share) + " of the frames, lost " + std::to_string(look.totals.losses) +
              (look.totals.losses == 1 ? " time" : " times"),
          ""};
}

Finding look_at_latency(const SceneLook &look) {
  const double most = of_sorted(look.waits, 0.99);
  const std::string text = "from frame to event " + milliseconds(of_sorted(look.waits, 0.5)) +
                           ", 99 of 100 within " + milliseconds(most);
  if (most <= kSlowMs) return {Verdict::kOk, "latency", text, ""};
  return {Verdict::kWarn, "latency", text, "fewer programs on this machine"};
}

}  // namespace

SceneLook look_at_scene(const Source &source, const std::string &word) {
  SceneLook look;
  Counts counts;
  Shares shares;
  Stream stream(&counts);
  PenObserver observer(&counts, [&look](const Observation &it) {
    if (const auto *pen = std::get_if<Pen>(&it)) {
      const std::int64_t now = g_get_monotonic_time() * 1000;
      look.waits.push_back(static_cast<double>(now - pen->when.entered_ns) / 1e6);
    }
  });
  StreamPlan plan;
  plan.source = source;
  plan.word = word;
  plan.tail = "identity name=enough eos-after=" + std::to_string(kFrames) +
              " ! noxpentracker name=tracker ! fakesink sync=false";
  plan.started = [&](GstElement *pipeline) {
    const GstPointer<GstElement> tracker(gst_bin_get_by_name(GST_BIN(pipeline), "tracker"));
    observer.attach(tracker.get());
    shares.attach(tracker.get());
  };
  const gint64 start = g_get_monotonic_time();
  guint late = 0;
  try {
    stream.open(std::move(plan));
    late = g_timeout_add(kPatienceMs, stop_late, &stream);
    look.failure = stream.run().why;
  } catch (const StreamError &error) {
    look.failure = error.what();
  }
  if (late != 0 && g_main_context_find_source_by_id(nullptr, late) != nullptr)
    g_source_remove(late);
  look.seconds = static_cast<double>(g_get_monotonic_time() - start) / 1e6;
  look.live = stream.live();
  look.totals = counts.totals();
  look.width = shares.width();
  look.height = shares.height();
  look.bright = shares.above(0);
  look.coloured = std::max(shares.above(1), shares.above(2));
  std::sort(look.waits.begin(), look.waits.end());
  return look;
}

Findings findings_of(const SceneLook &look) {
  if (!look.failure.empty()) return {{Verdict::kFail, "source", look.failure, ""}};
  if (look.totals.frames == 0) {
    return {{Verdict::kFail, "source",
             "brought no frame in " + std::to_string(kPatienceMs / 1000) + " seconds",
             "another program may hold it"}};
  }
  Findings findings = {look_at_rate(look), look_at_light(look), look_at_colours(look),
                       look_at_pen(look)};
  if (!look.waits.empty()) findings.push_back(look_at_latency(look));
  return findings;
}

}  // namespace nox::app
