// What is known about one frame of a stream, as plain values: what the streaming thread makes, the
// steps change and the outputs send out into the world.
#ifndef NOX_VISUALS_OBSERVATION_H_
#define NOX_VISUALS_OBSERVATION_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace nox::app {

// A place, as fractions of a width and a height, from the top left.
struct Point {
  double x = 0;
  double y = 0;
};

// When it was.
struct Moment {
  std::optional<std::int64_t> pts_ns;   // the buffer's time stamp
  std::optional<std::int64_t> unix_us;  // of the clock on the wall; none for files
  std::int64_t entered_ns = 0;          // monotonic: when the frame came to the element
};

// The time that steps and speeds reckon with: the stream's own where it has one, so that a file
// that is read as fast as it goes gives what it gave when it was live.
inline std::int64_t stream_ns(const Moment &when) {
  return when.pts_ns.value_or(when.entered_ns);
}

struct Pen {
  Moment when;
  Point at;  // on the surface
  bool pressed = false;
  std::array<float, 2> raw{};  // x and y as the element's event said them, or would have
  std::uint64_t stroke = 0;    // counts presses from 1; a hovering pen has that of the next press
  bool recovered = false;      // the element did not find it: Recovery did
};

// The first frame without the pen that the frame before it had.
struct Loss {
  Moment when;
  bool pressed = false;  // as the pen was when it was seen last
};

struct Code {
  Moment when;
  std::string bytes;             // the payload, NUL and all
  std::array<Point, 4> corners;  // in pixels of the picture, clockwise from the code's own top left
  int size = 0;                  // modules on a side
  std::string reader;            // "quirc", "zxing" or "quirc2x"
};

// The counts of a stream so far.
struct Totals {
  std::uint64_t frames = 0;          // that came to the element
  std::uint64_t found = 0;           // of these, with a pen
  std::uint64_t losses = 0;          // how often the pen went
  std::uint64_t losses_pressed = 0;  // of these, while it was pressed
  std::uint64_t dropped = 0;         // frames that a newer one replaced before the element
  std::uint64_t undelivered = 0;     // messages that outputs could not send
};

// The stream is over: nothing follows.
struct End {
  Moment when;
  Totals totals;
};

using Observation = std::variant<Pen, Loss, Code, End>;

// One JSON object without a line end, as docs/output.md and docs/output.schema.json describe it.
std::string to_json(const Observation &observation, const std::string &stream);

}  // namespace nox::app

#endif  // NOX_VISUALS_OBSERVATION_H_
