// pen_demo: plays a clip of the pen scene through noxpentracker and compares what the element says
// with the truth. usage: pen_demo CLIP PICTURE Prints how often and how exactly the pen was found,
// and draws the tracked path over the true one.
#include <gst/gst.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "scenes/pen_scene.h"
#include "scenes/png.h"

namespace {

using nox::scenes::Canvas;
using nox::scenes::PenScene;
using nox::scenes::PenTruth;
using nox::scenes::Point;

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
// The tracker works on a picture of this size and tells the centre of a pixel by the pixel's
// number.
constexpr float kWorkWidth = 448.0F;
constexpr float kWorkHeight = 252.0F;

struct Sighting {
  bool found;
  bool pressed;
  Point at;  // fractions of the picture from the top left
};

// What the element said, one entry for each buffer that it passed on.
struct Recording {
  Sighting pending{};
  std::vector<Sighting> frames;
};

Sighting read_event(const GstStructure *structure) {
  gfloat x = 0.0F;
  gfloat y = 0.0F;
  gboolean pressed = FALSE;
  gst_structure_get(structure, "x", G_TYPE_FLOAT, &x, "y", G_TYPE_FLOAT, &y, "pressed",
                    G_TYPE_BOOLEAN, &pressed, nullptr);
  // The element counts x from the right.
  return {true, pressed != FALSE, {1.0F - x - 0.5F / kWorkWidth, y + 0.5F / kWorkHeight}};
}

// An event comes before the buffer that it is about.
GstPadProbeReturn record(GstPad * /*pad*/, GstPadProbeInfo *info, gpointer data) {
  auto *recording = static_cast<Recording *>(data);
  if ((GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER) != 0) {
    recording->frames.push_back(recording->pending);
    recording->pending = {};
    return GST_PAD_PROBE_OK;
  }
  const GstStructure *structure = gst_event_get_structure(GST_PAD_PROBE_INFO_EVENT(info));
  if (structure != nullptr && gst_structure_has_name(structure, "NoxTrackingData")) {
    recording->pending = read_event(structure);
  }
  return GST_PAD_PROBE_OK;
}

std::vector<Sighting> play(const std::string &clip) {
  Recording recording;
  GError *error = nullptr;
  GstElement *pipeline = gst_parse_launch(
      "filesrc name=file ! matroskademux ! vp8dec ! noxpentracker name=tracker ! fakesink", &error);
  if (pipeline == nullptr || error != nullptr) throw std::runtime_error(error->message);
  GstElement *file = gst_bin_get_by_name(GST_BIN(pipeline), "file");
  g_object_set(file, "location", clip.c_str(), nullptr);
  GstElement *tracker = gst_bin_get_by_name(GST_BIN(pipeline), "tracker");
  GstPad *pad = gst_element_get_static_pad(tracker, "src");
  gst_pad_add_probe(
      pad,
      static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM),
      record, &recording, nullptr);
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  GstBus *bus = gst_element_get_bus(pipeline);
  GstMessage *end = gst_bus_timed_pop_filtered(
      bus, GST_CLOCK_TIME_NONE, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  const bool played = GST_MESSAGE_TYPE(end) == GST_MESSAGE_EOS;
  gst_message_unref(end);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(bus);
  gst_object_unref(pad);
  gst_object_unref(tracker);
  gst_object_unref(file);
  gst_object_unref(pipeline);
  if (!played) throw std::runtime_error("cannot play " + clip);
  return recording.frames;
}

struct Score {
  int visible = 0;            // frames with a pen
  int found = 0;              // of these
  int right_state = 0;        // of the found ones
  int invented = 0;           // frames without a pen in which one was found
  std::vector<float> errors;  // pixels, for every found one
};

Score compare(const std::vector<Sighting> &frames) {
  Score score;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const PenTruth truth = PenScene::truth(static_cast<std::uint32_t>(i));
    if (!truth.visible) {
      score.invented += frames[i].found ? 1 : 0;
      continue;
    }
    ++score.visible;
    if (!frames[i].found) continue;
    ++score.found;
    score.right_state += frames[i].pressed == truth.pressed ? 1 : 0;
    score.errors.push_back(std::hypot((frames[i].at.x - truth.at.x) * kWidth,
                                      (frames[i].at.y - truth.at.y) * kHeight));
  }
  std::sort(score.errors.begin(), score.errors.end());
  return score;
}

void print(const Score &score) {
  std::printf("  found in %d of %d frames with a pen (%.1f %%), and in %d without one\n",
              score.found, score.visible, 100.0 * score.found / std::max(score.visible, 1),
              score.invented);
  if (score.errors.empty()) return;
  std::printf("  pressed state right in %.1f %%\n", 100.0 * score.right_state / score.found);
  std::printf("  position error: median %.2f, largest %.2f pixels of %d by %d\n",
              static_cast<double>(score.errors[score.errors.size() / 2]),
              static_cast<double>(score.errors.back()), kWidth, kHeight);
}

Point on_canvas(Point fraction) {
  return {fraction.x * kWidth, fraction.y * kHeight};
}

void draw_paths(Canvas *canvas, const std::vector<Sighting> &frames) {
  for (std::size_t i = 1; i < frames.size(); ++i) {
    const PenTruth before = PenScene::truth(static_cast<std::uint32_t>(i - 1));
    const PenTruth now = PenScene::truth(static_cast<std::uint32_t>(i));
    if (before.visible && now.visible) {
      canvas->line(on_canvas(before.at), on_canvas(now.at), now.pressed ? 9.0F : 4.5F,
                   {235, 235, 225});
    }
  }
  for (std::size_t i = 1; i < frames.size(); ++i) {
    if (!frames[i - 1].found || !frames[i].found) continue;
    const bool pressed = frames[i].pressed;
    canvas->line(on_canvas(frames[i - 1].at), on_canvas(frames[i].at), pressed ? 5.0F : 1.5F,
                 pressed ? nox::scenes::Color{225, 40, 40} : nox::scenes::Color{40, 90, 230});
  }
}

}  // namespace

int main(int argc, char **argv) {
  gst_init(&argc, &argv);
  if (argc != 3) {
    std::fputs("usage: pen_demo CLIP PICTURE\n", stderr);
    return EXIT_FAILURE;
  }
  try {
    const std::vector<Sighting> frames = play(argv[1]);
    const Score score = compare(frames);
    print(score);
    PenScene scene(kWidth, kHeight);
    scene.draw(0);
    scene.canvas().expose(0.6F);
    draw_paths(&scene.canvas(), frames);
    nox::scenes::write_png(scene.canvas(), argv[2]);
    return score.found > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception &error) {
    std::fprintf(stderr, "pen_demo: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
