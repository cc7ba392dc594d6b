// smoothing_table: what the constants of --smooth give, measured on drawn scenes with a camera's
// blur and noise. Prints the table of docs/pen-tracking.md: the tremble of a pen at rest, and how
// far the smoothed pen is from the true one while it writes, both in pixels of a wall of 1920 by
// 1080.
#include <cmath>
#include <cstdio>
#include <functional>
#include <numbers>
#include <vector>

#include "nox-visuals/observation.h"
#include "nox-visuals/steps/smooth.h"
#include "pentracker/pen_tracker.h"
#include "scenes/pen_scene.h"

namespace {

using nox::app::Observation;
using nox::app::OneEuroConstants;
using nox::app::Pen;
using nox::app::Point;
using nox::scenes::PenScene;

constexpr int kWidth = 960;
constexpr int kHeight = 540;
constexpr double kWallWidth = 1920;
constexpr double kWallHeight = 1080;
constexpr double kWidths = kWallWidth / kWallHeight;  // heights in a width

// Where the pen truly is, `seconds` after the start.
using Path = std::function<Point(double seconds)>;

struct Sample {
  Observation seen;
  Point truth;
};

constexpr float kNoise = 3;  // standard deviation of a sample
constexpr float kBlur = 0.8F;

// What the tracker makes of a pen on `path`.
std::vector<Sample> record(const Path &path, double seconds, int rate) {
  const nox::scenes::NoiseField field(2);
  PenScene scene(kWidth, kHeight);
  NoxVideoFrame frame{};
  nox_video_frame_alloc(&frame, kNoxFormatI420, kWidth, kHeight);
  PenTracker *tracker = pen_tracker_new();
  std::vector<Sample> samples;
  for (int i = 0; i < static_cast<int>(seconds * rate); ++i) {
    const Point at = path(static_cast<double>(i) / rate);
    scene.draw(static_cast<std::uint32_t>(i * 30 / rate),
               {true, false, {static_cast<float>(at.x), static_cast<float>(at.y)}});
    scene.canvas().blur(kBlur);
    scene.canvas().add_noise(field, static_cast<std::uint32_t>(i), kNoise);
    scene.canvas().write(&frame);
    float x = 0;
    float y = 0;
    std::int32_t pressed = 0;
    if (pen_tracker_process(tracker, &frame, &frame, &x, &y, &pressed) == 0) continue;
    Pen pen;
    pen.when.pts_ns = std::int64_t{i} * 1'000'000'000 / rate;
    pen.at = {1.0 - static_cast<double>(x) - 0.5 / 448, static_cast<double>(y) + 0.5 / 252};
    samples.push_back({pen, at});
  }
  pen_tracker_free(tracker);
  nox_video_frame_free_planes(&frame);
  return samples;
}

double on_wall(Point a, Point b) {
  return std::hypot((a.x - b.x) * kWallWidth, (a.y - b.y) * kWallHeight);
}

// Without constants: as the tracker says.
std::vector<Point> smoothed(const std::vector<Sample> &samples, const OneEuroConstants *constants) {
  nox::app::Smooth smooth(constants != nullptr ? *constants : OneEuroConstants{1, 0, 1});
  std::vector<Point> points;
  for (const Sample &sample : samples) {
    std::vector<Observation> out;
    smooth.take(sample.seen, &out);
    points.push_back(std::get<Pen>(constants != nullptr ? out.front() : sample.seen).at);
  }
  return points;
}

double root_mean_square(const std::vector<double> &values) {
  double sum = 0;
  for (const double value : values) sum += value * value;
  return std::sqrt(sum / static_cast<double>(values.size()));
}

// Around where it rests, from the second second on.
double tremble(const std::vector<std::vector<Sample>> &rests, const OneEuroConstants *constants) {
  std::vector<double> distances;
  for (const std::vector<Sample> &rest : rests) {
    const std::vector<Point> points = smoothed(rest, constants);
    const std::size_t from = points.size() / 3;
    Point mean;
    for (std::size_t i = from; i < points.size(); ++i) {
      mean.x += points[i].x / static_cast<double>(points.size() - from);
      mean.y += points[i].y / static_cast<double>(points.size() - from);
    }
    for (std::size_t i = from; i < points.size(); ++i)
      distances.push_back(on_wall(points[i], mean));
  }
  return root_mean_square(distances);
}

double error(const std::vector<Sample> &writing, const OneEuroConstants *constants) {
  const std::vector<Point> points = smoothed(writing, constants);
  std::vector<double> distances;
  for (std::size_t i = 0; i < points.size(); ++i) {
    distances.push_back(on_wall(points[i], writing[i].truth));
  }
  return root_mean_square(distances);
}

// Loops of letters on a line that goes on: 2 and 3 a second, 77 and 38 pixels wide.
Point write_letters(double seconds) {
  const bool small = seconds >= 5;
  const double turn = 2 * std::numbers::pi * (small ? 3.0 : 2.0) * seconds;
  const double size = small ? 0.010 : 0.020;
  return {0.30 + 0.04 * seconds + size * std::sin(turn), 0.50 + size * kWidths * std::cos(turn)};
}

// A hand that holds still trembles by a millimetre or so, on a wall of two metres a pixel: 8 to 12
// times a second.
Path held_at(Point place) {
  constexpr double kTremor = 1.0 / 1920;
  return [=](double seconds) -> Point {
    const double turn = 2 * std::numbers::pi * seconds;
    return {place.x + kTremor * std::sin(9.1 * turn),
            place.y + kTremor * kWidths * std::sin(10.3 * turn)};
  };
}

struct Recordings {
  std::vector<std::vector<Sample>> rests;
  std::vector<std::vector<Sample>> held;
  std::vector<Sample> writing;
};

Recordings record_all(int rate) {
  Recordings recordings;
  for (int i = 0; i < 6; ++i) {
    // Places that lie differently on the tracker's pixels.
    const Point place{0.35 + 0.0507 * i, 0.40 + 0.0311 * i};
    recordings.rests.push_back(record([=](double) { return place; }, 3, rate));
    recordings.held.push_back(record(held_at(place), 3, rate));
  }
  recordings.writing = record(write_letters, 10, rate);
  return recordings;
}

void print_row(const char *name, const Recordings (&at)[2], const OneEuroConstants *constants) {
  std::printf("| %s |", name);
  for (const Recordings &it : at) std::printf(" %.1f |", tremble(it.rests, constants));
  for (const Recordings &it : at) std::printf(" %.1f |", tremble(it.held, constants));
  for (const Recordings &it : at) std::printf(" %.1f |", error(it.writing, constants));
  std::printf("\n");
}

}  // namespace

int main() {
  const Recordings at[2] = {record_all(30), record_all(60)};
  std::printf("| FMIN, BETA, DCUT | rest, 30 | 60 | held, 30 | 60 | writing, 30 | 60 |\n");
  std::printf("|---|---|---|---|---|---|---|\n");
  print_row("off", at, nullptr);
  const OneEuroConstants fingers{1, 0.007, 1};
  print_row("1, 0.007, 1", at, &fingers);
  for (const double min_cutoff : {0.5, 1.0, 2.0, 4.0}) {
    for (const double beta : {10.0, 30.0, 60.0, 120.0}) {
      for (const double derivative_cutoff : {1.0, 4.0, 8.0}) {
        const OneEuroConstants constants{min_cutoff, beta, derivative_cutoff};
        char name[64];
        std::snprintf(name, sizeof name, "%g, %g, %g", min_cutoff, beta, derivative_cutoff);
        print_row(name, at, &constants);
      }
    }
  }
  return 0;
}
