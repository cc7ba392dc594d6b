#include "nox-visuals/demo/pen_path.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ostream>

#include "scenes/pen_scene.h"
#include "scenes/png.h"

namespace nox::app::demo {
namespace {

using scenes::Canvas;
using scenes::PenScene;
using scenes::PenTruth;

constexpr double kFramesPerSecond = 30;
constexpr double kRatio = 9.0 / 16;  // of the picture's height to its width

constexpr scenes::Color kTruth{235, 235, 225};
constexpr scenes::Color kPressed{225, 40, 40};
constexpr scenes::Color kHovering{40, 90, 230};

double error_of(const Pen &pen, const PenTruth &truth) {
  return std::hypot(pen.at.x - static_cast<double>(truth.at.x),
                    (pen.at.y - static_cast<double>(truth.at.y)) * kRatio);
}

scenes::Point on(const Canvas &canvas, double x, double y) {
  return {static_cast<float>(x * canvas.width()), static_cast<float>(y * canvas.height())};
}

scenes::Point on(const Canvas &canvas, const PenTruth &truth) {
  return on(canvas, static_cast<double>(truth.at.x), static_cast<double>(truth.at.y));
}

void draw_truth(Canvas *canvas, std::uint32_t frames) {
  for (std::uint32_t i = 1; i < frames; ++i) {
    const PenTruth before = PenScene::truth(i - 1);
    const PenTruth now = PenScene::truth(i);
    if (!before.visible || !now.visible) continue;
    canvas->line(on(*canvas, before), on(*canvas, now), now.pressed ? 9.0F : 4.5F, kTruth);
  }
}

void draw_path(Canvas *canvas, const PenPath &path) {
  for (const auto &[frame, pen] : path) {
    const auto before = path.find(frame - 1);
    if (before == path.end()) continue;
    const Point from = before->second.at;
    canvas->line(on(*canvas, from.x, from.y), on(*canvas, pen.at.x, pen.at.y),
                 pen.pressed ? 5.0F : 1.5F, pen.pressed ? kPressed : kHovering);
  }
}

template <typename... Values>
void print_line(std::ostream &out, const char *format, Values... values) {
  std::array<char, 128> line{};
  std::snprintf(line.data(), line.size(), format, values...);
  out << line.data() << '\n';
}

}  // namespace

void PenRecorder::take(const Observation &observation) {
  const Pen *pen = std::get_if<Pen>(&observation);
  if (pen == nullptr) return;
  const double frame = static_cast<double>(stream_ns(pen->when)) * kFramesPerSecond / 1e9;
  path_->emplace(static_cast<std::uint32_t>(std::lround(frame)), *pen);
}

PenScore compare(const PenPath &path, std::uint32_t frames) {
  PenScore score;
  for (std::uint32_t i = 0; i < frames; ++i) {
    const PenTruth truth = PenScene::truth(i);
    const auto pen = path.find(i);
    const bool found = pen != path.end();
    if (!truth.visible) {
      score.invented += found ? 1 : 0;
      continue;
    }
    ++score.visible;
    if (!found) continue;
    ++score.found;
    score.right += pen->second.pressed == truth.pressed ? 1 : 0;
    score.errors.push_back(error_of(pen->second, truth));
  }
  std::sort(score.errors.begin(), score.errors.end());
  return score;
}

void print(std::ostream &out, const PenScore &score, int width) {
  print_line(out, "  found in %u of %u frames with a pen, and in %u without one", score.found,
             score.visible, score.invented);
  if (score.errors.empty()) return;
  print_line(out, "  pressed state right in %.1f %%", 100.0 * score.right / score.found);
  print_line(out, "  position error: median %.2f, largest %.2f pixels of a picture %d wide",
             score.errors[score.errors.size() / 2] * width, score.errors.back() * width, width);
}

void draw(const PenPath &path, std::uint32_t frames, int width, int height,
          const std::string &file) {
  PenScene scene(width, height);
  scene.draw(0);
  scene.canvas().expose(0.6F);
  draw_truth(&scene.canvas(), frames);
  draw_path(&scene.canvas(), path);
  scenes::write_png(scene.canvas(), file);
}

}  // namespace nox::app::demo
