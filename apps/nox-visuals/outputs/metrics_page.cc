#include "nox-visuals/outputs/metrics_page.h"

#include <algorithm>
#include <cstdio>

namespace nox::app {
namespace {

// Seconds with the fewest digits that a person would write.
std::string seconds(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.9g", value);
  return text;
}

std::string head(const std::string &name, const char *type, const char *help) {
  return "# HELP " + name + " " + help + "\n# TYPE " + name + " " + type + "\n";
}

}  // namespace

void LatencyHistogram::add(std::int64_t latency_ns) {
  const auto *bound = std::find_if(kBoundsMs.begin(), kBoundsMs.end(), [=](int ms) {
    return latency_ns <= std::int64_t{ms} * 1'000'000;
  });
  ++counts_[static_cast<std::size_t>(bound - kBoundsMs.begin())];
  sum_ns_ += latency_ns;
}

std::string LatencyHistogram::text(const std::string &name, const std::string &label) const {
  std::string text =
      head(name, "histogram", "Time from a frame's arrival until its result is out.");
  std::uint64_t so_far = 0;
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    so_far += counts_[i];
    const std::string bound = i < kBoundsMs.size() ? seconds(kBoundsMs[i] / 1e3) : "+Inf";
    text += name + "_bucket{" + label + ",le=\"" + bound + "\"} " + std::to_string(so_far) + "\n";
  }
  text += name + "_sum{" + label + "} " + seconds(static_cast<double>(sum_ns_) / 1e9) + "\n";
  text += name + "_count{" + label + "} " + std::to_string(so_far) + "\n";
  return text;
}

std::string metrics_page(const std::string &stream, const Totals &totals,
                         const LatencyHistogram &latency) {
  struct Row {
    const char *name;
    std::uint64_t value;
    const char *help;
  };
  const std::array<Row, 6> rows = {{
      {"nox_frames_total", totals.frames, "Frames that were looked at."},
      {"nox_dropped_total", totals.dropped, "Frames left out because a newer one was there."},
      {"nox_found_total", totals.found, "Frames with a pen, or with a code."},
      {"nox_lost_total", totals.losses, "Times that the pen went."},
      {"nox_lost_pressed_total", totals.losses_pressed, "Times that it went while pressed."},
      {"nox_undelivered_total", totals.undelivered, "Messages that could not be delivered."},
  }};
  // A stream's name has letters, digits, - and _ only: nothing to escape.
  const std::string label = "stream=\"" + stream + "\"";
  std::string page;
  for (const Row &row : rows) {
    page += head(row.name, "counter", row.help) + row.name + "{" + label + "} " +
            std::to_string(row.value) + "\n";
  }
  return page + latency.text("nox_latency_seconds", label);
}

}  // namespace nox::app
