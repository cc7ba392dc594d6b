#include "nox-visuals/outputs/plot.h"

#include <cairo-svg.h>
#include <cairo.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

#include "nox-visuals/outputs/output_error.h"

namespace nox::app {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
// A pen at rest adds nothing, however long it rests.
constexpr double kSmallestStep = 0.25;
// A picture of a day must not wait in memory as one line.
constexpr int kMostPoints = 500;

struct Look {
  double red, green, blue, width;
};
constexpr Look kWritten{0.75, 0.10, 0.10, 4.0};
constexpr Look kHovered{0.55, 0.62, 0.80, 1.2};

// A file, and what went wrong first with it.
struct Sink {
  FILE *file = nullptr;
  int error = 0;
};

cairo_status_t write_bytes(void *data, const unsigned char *bytes, unsigned int size) {
  auto *sink = static_cast<Sink *>(data);
  if (std::fwrite(bytes, 1, size, sink->file) == size) return CAIRO_STATUS_SUCCESS;
  if (sink->error == 0) sink->error = errno;
  return CAIRO_STATUS_WRITE_ERROR;
}

}  // namespace

// One line at a time, of one look, into a file that has its name only when it is whole.
class Plot::Canvas {
 public:
  explicit Canvas(const std::string &file);
  ~Canvas();
  Canvas(const Canvas &) = delete;
  Canvas &operator=(const Canvas &) = delete;

  void begin(Point at, const Look &look);
  void extend(Point to);
  void end();
  void save();

 private:
  [[noreturn]] void fail(const char *what, int error) const;

  std::string name_;
  std::string partial_;
  bool svg_;
  Sink out_;
  cairo_surface_t *surface_ = nullptr;
  cairo_t *cairo_ = nullptr;
  int points_ = 0;
};

Plot::Canvas::Canvas(const std::string &file)
    : name_(file),
      partial_(file + "." + std::to_string(getpid()) + ".part"),
      svg_(file.ends_with(".svg")) {
  if (!svg_ && !file.ends_with(".png")) {
    throw OutputError("--plot " + file + ": the name ends with .png or .svg");
  }
  out_.file = std::fopen(partial_.c_str(), "wb");
  if (out_.file == nullptr) fail("cannot be written", errno);
  surface_ = svg_ ? cairo_svg_surface_create_for_stream(write_bytes, &out_, kWidth, kHeight)
                  : cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
  cairo_ = cairo_create(surface_);
  cairo_set_source_rgb(cairo_, 1, 1, 1);
  cairo_paint(cairo_);
  cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
}

Plot::Canvas::~Canvas() {
  cairo_destroy(cairo_);
  // The surface of an SVG writes its rest into the file.
  cairo_surface_destroy(surface_);
  if (out_.file == nullptr) return;
  std::fclose(out_.file);
  std::remove(partial_.c_str());
}

void Plot::Canvas::begin(Point at, const Look &look) {
  end();
  cairo_set_source_rgb(cairo_, look.red, look.green, look.blue);
  cairo_set_line_width(cairo_, look.width);
  cairo_move_to(cairo_, at.x * kWidth, at.y * kHeight);
  // A line to itself: with round ends that is a dot, and a tap leaves one.
  cairo_line_to(cairo_, at.x * kWidth, at.y * kHeight);
  points_ = 1;
}

void Plot::Canvas::extend(Point to) {
  if (points_ == kMostPoints) {
    cairo_stroke_preserve(cairo_);
    double x = 0;
    double y = 0;
    cairo_get_current_point(cairo_, &x, &y);
    cairo_new_path(cairo_);
    cairo_move_to(cairo_, x, y);
    points_ = 0;
  }
  cairo_line_to(cairo_, to.x * kWidth, to.y * kHeight);
  ++points_;
}

void Plot::Canvas::end() {
  if (points_ > 0) cairo_stroke(cairo_);
  points_ = 0;
}

void Plot::Canvas::save() {
  end();
  cairo_status_t status = cairo_status(cairo_);
  if (status == CAIRO_STATUS_SUCCESS && !svg_) {
    status = cairo_surface_write_to_png_stream(surface_, write_bytes, &out_);
  }
  cairo_surface_finish(surface_);
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface_);
  const bool stored = std::fflush(out_.file) == 0 && fsync(fileno(out_.file)) == 0;
  if (!stored && out_.error == 0) out_.error = errno;
  if (out_.error != 0) fail("cannot be written to its end", out_.error);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw OutputError("--plot " + name_ + ": " + cairo_status_to_string(status));
  }
  if (std::rename(partial_.c_str(), name_.c_str()) != 0) fail("cannot be given its name", errno);
  std::fclose(out_.file);
  out_.file = nullptr;
}

void Plot::Canvas::fail(const char *what, int error) const {
  throw OutputError("--plot " + name_ + ": " + what + ": " + std::strerror(error));
}

Plot::Plot(const std::string &file, Say say)
    : say_(std::move(say)), canvas_(std::make_unique<Canvas>(file)) {}

Plot::~Plot() = default;

void Plot::take(const Observation &observation) {
  if (const auto *pen = std::get_if<Pen>(&observation)) {
    follow(*pen);
  } else if (std::holds_alternative<Loss>(observation)) {
    last_.reset();
  } else if (std::holds_alternative<End>(observation)) {
    save();
  }
}

void Plot::save() {
  try {
    canvas_->save();
  } catch (const OutputError &error) {
    say_(error.what());
    broken_ = true;
  }
  canvas_.reset();
}

void Plot::follow(const Pen &pen) {
  const bool goes_on = last_ && last_->pressed == pen.pressed && last_->stroke == pen.stroke;
  if (!goes_on) {
    canvas_->begin(pen.at, pen.pressed ? kWritten : kHovered);
  } else if (std::hypot((pen.at.x - last_->at.x) * kWidth, (pen.at.y - last_->at.y) * kHeight) <
             kSmallestStep) {
    return;
  } else {
    canvas_->extend(pen.at);
  }
  last_ = pen;
}

}  // namespace nox::app
