#include "nox-visuals/demo/codes.h"

#include <ostream>
#include <string_view>

#include "nox-visuals/demo/clip.h"
#include "nox-visuals/demo/drawing.h"
#include "scenes/png.h"

namespace nox::app::demo {
namespace {

constexpr const char *kCategory = "noxqrdec";
constexpr std::string_view kBefore = "Got QR Payload: ";
constexpr scenes::Color kOutline{225, 40, 40};

// GStreamer calls it for each line of its log, from the streaming thread.
void take_log_line(GstDebugCategory *category, GstDebugLevel /*level*/, const gchar * /*file*/,
                   const gchar * /*function*/, gint /*line*/, GObject * /*object*/,
                   GstDebugMessage *message, gpointer counts) {
  if (g_strcmp0(gst_debug_category_get_name(category), kCategory) != 0) return;
  const std::string_view text = gst_debug_message_get(message);
  if (!text.starts_with(kBefore)) return;
  ++(*static_cast<PayloadCounts *>(counts))[std::string(text.substr(kBefore.size()))];
}

// While one lives, the element's log goes into `counts`, and not to standard error.
class LogReader {
 public:
  explicit LogReader(PayloadCounts *counts)
      : printed_(gst_debug_remove_log_function(gst_debug_log_default) > 0) {
    gst_debug_add_log_function(take_log_line, counts, nullptr);
    gst_debug_set_threshold_for_name(kCategory, GST_LEVEL_INFO);
  }
  ~LogReader() {
    gst_debug_unset_threshold_for_name(kCategory);
    gst_debug_remove_log_function(take_log_line);
    if (printed_) gst_debug_add_log_function(gst_debug_log_default, nullptr, nullptr);
  }
  LogReader(const LogReader &) = delete;
  LogReader &operator=(const LogReader &) = delete;

 private:
  bool printed_;
};

scenes::Point on_canvas(const Point &point) {
  return {static_cast<float>(point.x), static_cast<float>(point.y)};
}

}  // namespace

void CodeRecorder::take(const Observation &observation) {
  const Code *code = std::get_if<Code>(&observation);
  if (code == nullptr) return;
  ++seen_->counts[code->bytes];
  if (seen_->first.empty() || stream_ns(seen_->first[0].when) == stream_ns(code->when)) {
    seen_->first.push_back(*code);
  }
}

PayloadCounts logged_payloads(const std::string &clip) {
  PayloadCounts counts;
  const auto pipeline =
      parse_pipeline("filesrc name=clip ! decodebin ! videoconvert ! noxqrdec ! fakesink");
  set_location(pipeline.get(), "clip", clip);
  const LogReader reader(&counts);
  run_to_end(pipeline.get());
  return counts;
}

void print(std::ostream &out, const PayloadCounts &counts) {
  for (const auto &[text, count] : counts) out << "  in " << count << " frames: " << text << '\n';
}

void draw_codes(const std::string &clip, const std::vector<Code> &codes, const std::string &file) {
  scenes::Canvas canvas = first_frame(clip);
  const float radius = static_cast<float>(canvas.width()) / 400;
  for (const Code &code : codes) {
    for (std::size_t i = 0; i < code.corners.size(); ++i) {
      const Point &next = code.corners[(i + 1) % code.corners.size()];
      canvas.line(on_canvas(code.corners[i]), on_canvas(next), radius, kOutline);
    }
  }
  scenes::write_png(canvas, file);
}

}  // namespace nox::app::demo
