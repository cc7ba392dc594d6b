#include "nox-visuals/observation.h"

#include <glib.h>

#include <ctime>

#include "nox-visuals/json_object.h"

namespace nox::app {
namespace {

// As in 2026-01-31T10:00:00.533Z.
std::string utc_time(std::int64_t unix_us) {
  constexpr std::int64_t kSecond = 1'000'000;
  const std::time_t seconds = unix_us / kSecond;
  std::tm fields{};
  gmtime_r(&seconds, &fields);
  char text[64];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &fields);
  std::snprintf(text + length, sizeof text - length, ".%03dZ",
                static_cast<int>(unix_us % kSecond / 1000));
  return text;
}

JsonObject begin(const char *type, const std::string &stream, const Moment &when) {
  JsonObject json;
  json.text("type", type);
  json.text("stream", stream);
  if (when.unix_us) json.text("time", utc_time(*when.unix_us));
  if (when.pts_ns) json.number("pts", static_cast<double>(*when.pts_ns) / 1e9);
  return json;
}

JsonObject fields(const Pen &pen, const std::string &stream) {
  JsonObject json = begin("pen", stream, pen.when);
  json.number("x", pen.at.x);
  json.number("y", pen.at.y);
  json.boolean("pressed", pen.pressed);
  json.integer("stroke", pen.stroke);
  json.raw("raw", "[" + json_float(pen.raw[0]) + "," + json_float(pen.raw[1]) + "]");
  if (pen.recovered) json.boolean("recovered", true);
  return json;
}

JsonObject fields(const Loss &loss, const std::string &stream) {
  JsonObject json = begin("lost", stream, loss.when);
  json.boolean("pressed", loss.pressed);
  return json;
}

std::string base64(const std::string &bytes) {
  gchar *text = g_base64_encode(reinterpret_cast<const guchar *>(bytes.data()), bytes.size());
  std::string out = text;
  g_free(text);
  return out;
}

std::string corner_list(const std::array<Point, 4> &corners) {
  std::string list;
  for (const Point &corner : corners) {
    list += list.empty() ? "[" : ",";
    list += "[" + json_number(corner.x) + "," + json_number(corner.y) + "]";
  }
  return list + "]";
}

JsonObject fields(const Code &code, const std::string &stream) {
  JsonObject json = begin("code", stream, code.when);
  if (is_utf8(code.bytes)) {
    json.text("text", code.bytes);
  } else {
    json.text("data", base64(code.bytes));
  }
  json.integer("bytes", code.bytes.size());
  json.raw("corners", corner_list(code.corners));
  json.integer("size", static_cast<std::uint64_t>(code.size));
  json.text("reader", code.reader);
  return json;
}

JsonObject fields(const End &end, const std::string &stream) {
  JsonObject json = begin("end", stream, end.when);
  json.integer("frames", end.totals.frames);
  json.integer("found", end.totals.found);
  json.integer("losses", end.totals.losses);
  json.integer("losses_pressed", end.totals.losses_pressed);
  json.integer("dropped", end.totals.dropped);
  json.integer("undelivered", end.totals.undelivered);
  return json;
}

}  // namespace

std::string to_json(const Observation &observation, const std::string &stream) {
  return std::visit([&](const auto &it) { return fields(it, stream).str(); }, observation);
}

}  // namespace nox::app
