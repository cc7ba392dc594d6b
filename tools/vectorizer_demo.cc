// vectorizer_demo: shows what noxvectorizer makes of a video.
// usage: vectorizer_demo [--edges] SOURCE PICTURE FRAME...
// SOURCE is a piece of a pipeline that ends in raw video. PICTURE gets a row for each FRAME
// (counted from 1, or the last one when the video is shorter): the input on the left, the drawing
// on the right. With --edges the video is the scene of that name, and the edges of its two cards
// must appear and disappear at the frames that follow from it.
#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "scenes/canvas.h"
#include "scenes/edge_scene.h"
#include "scenes/png.h"

namespace {

using nox::scenes::Canvas;
using nox::scenes::Color;
using nox::scenes::EdgeScene;

struct SampleDeleter {
  void operator()(GstSample *sample) const { gst_sample_unref(sample); }
};
using SamplePtr = std::unique_ptr<GstSample, SampleDeleter>;

struct ObjectDeleter {
  void operator()(gpointer object) const { gst_object_unref(object); }
};
template <typename Object>
using ObjectPtr = std::unique_ptr<Object, ObjectDeleter>;

// A sample's picture, mapped for reading while this lives.
class Picture {
 public:
  explicit Picture(GstSample *sample) {
    gst_video_info_from_caps(&info_, gst_sample_get_caps(sample));
    if (gst_video_frame_map(&frame_, &info_, gst_sample_get_buffer(sample), GST_MAP_READ) ==
        FALSE) {
      throw std::runtime_error("a frame cannot be read");
    }
  }
  ~Picture() { gst_video_frame_unmap(&frame_); }
  Picture(const Picture &) = delete;
  Picture &operator=(const Picture &) = delete;

  int width() const { return GST_VIDEO_FRAME_WIDTH(&frame_); }
  int height() const { return GST_VIDEO_FRAME_HEIGHT(&frame_); }
  int luma(int x, int y) const { return sample(0, x, y); }

  // The colour of a pixel, from BT.601 studio range.
  Color color(int x, int y) const {
    const auto luminance = 1.164F * static_cast<float>(luma(x, y) - 16);
    const auto u = static_cast<float>(sample(1, x / 2, y / 2) - 128);
    const auto v = static_cast<float>(sample(2, x / 2, y / 2) - 128);
    return {luminance + 1.596F * v, luminance - 0.392F * u - 0.813F * v, luminance + 2.017F * u};
  }

 private:
  int sample(int plane, int x, int y) const {
    const auto *data =
        static_cast<const std::uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&frame_, plane));
    return data[y * GST_VIDEO_FRAME_PLANE_STRIDE(&frame_, plane) + x];
  }

  GstVideoInfo info_{};
  GstVideoFrame frame_{};
};

// The input and the drawing of each frame in turn.
class Player {
 public:
  explicit Player(const std::string &source) {
    // The queues hold a frame or two each: both branches are read in step.
    const std::string description =
        source +
        " ! video/x-raw,format=I420 ! tee name=t"
        " t. ! queue ! appsink name=input sync=false max-buffers=2"
        " t. ! queue ! noxvectorizer ! appsink name=drawing sync=false max-buffers=2";
    GError *error = nullptr;
    pipeline_.reset(gst_parse_launch(description.c_str(), &error));
    if (error != nullptr) throw std::runtime_error(error->message);
    input_.reset(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "input"));
    drawing_.reset(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "drawing"));
    gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  }
  ~Player() { gst_element_set_state(pipeline_.get(), GST_STATE_NULL); }
  Player(const Player &) = delete;
  Player &operator=(const Player &) = delete;

  // False behind the last frame.
  bool next() {
    SamplePtr input(gst_app_sink_pull_sample(GST_APP_SINK(input_.get())));
    SamplePtr drawing(gst_app_sink_pull_sample(GST_APP_SINK(drawing_.get())));
    if (input == nullptr || drawing == nullptr) return false;
    input_sample_ = std::move(input);
    drawing_sample_ = std::move(drawing);
    return true;
  }
  GstSample *input() const { return input_sample_.get(); }
  GstSample *drawing() const { return drawing_sample_.get(); }

 private:
  ObjectPtr<GstElement> pipeline_;
  ObjectPtr<GstElement> input_;
  ObjectPtr<GstElement> drawing_;
  SamplePtr input_sample_;
  SamplePtr drawing_sample_;
};

// A row of the picture: input and drawing side by side.
Canvas make_row(const Picture &input, const Picture &drawing) {
  Canvas row(2 * input.width(), input.height());
  for (int y = 0; y < input.height(); ++y) {
    for (int x = 0; x < input.width(); ++x) {
      row.mix(x, y, input.color(x, y), 1.0F);
      row.mix(input.width() + x, y, drawing.color(x, y), 1.0F);
    }
  }
  return row;
}

Canvas stack(const std::vector<Canvas> &rows) {
  int height = 0;
  for (const Canvas &row : rows) height += row.height();
  Canvas all(rows.front().width(), height);
  int top = 0;
  for (const Canvas &row : rows) {
    for (int y = 0; y < row.height(); ++y) {
      for (int x = 0; x < row.width(); ++x) {
        all.mix(x, top + y, row.pixel(x, y), 1.0F);
      }
    }
    top += row.height();
  }
  return all;
}

// An upright border between two areas, as fractions of the picture, and when it was drawn at full
// strength.
struct WatchedEdge {
  const char *name;
  float x;
  float top;
  float bottom;
  int expected_first;
  int expected_last;
  int first = 0;
  int last = 0;
};

// Whether at least half of the rows along the edge show the input itself near it.
bool is_drawn(const WatchedEdge &edge, const Picture &input, const Picture &drawing) {
  const int x = static_cast<int>(edge.x * static_cast<float>(input.width()));
  const int top = static_cast<int>(edge.top * static_cast<float>(input.height()));
  const int bottom = static_cast<int>(edge.bottom * static_cast<float>(input.height()));
  int rows = 0;
  for (int y = top; y < bottom; ++y) {
    bool shown = false;
    for (int i = x - 3; i <= x + 3; ++i) shown |= drawing.luma(i, y) == input.luma(i, y);
    rows += shown ? 1 : 0;
  }
  return 2 * rows >= bottom - top;
}

void watch(std::vector<WatchedEdge> *edges, int frame, const Picture &input,
           const Picture &drawing) {
  for (WatchedEdge &edge : *edges) {
    if (!is_drawn(edge, input, drawing)) continue;
    if (edge.first == 0) edge.first = frame;
    edge.last = frame;
  }
}

// An edge is drawn from its 100th frame on and for 499 frames after its last one.
std::vector<WatchedEdge> card_edges(int last_frame) {
  const int light_last = static_cast<int>(EdgeScene::kCardGoes) - 1;
  const int dark_first = static_cast<int>(EdgeScene::kCardComes);
  return {{"light card", 0.30F, 0.60F, 0.72F, 100, std::min(light_last + 499, last_frame)},
          {"dark card", 0.60F, 0.62F, 0.74F, dark_first + 99, last_frame}};
}

bool report(const std::vector<WatchedEdge> &edges) {
  bool right = true;
  for (const WatchedEdge &edge : edges) {
    const bool as_expected = edge.first == edge.expected_first && edge.last == edge.expected_last;
    std::printf("  edges of the %s: drawn in frames %d to %d%s\n", edge.name, edge.first, edge.last,
                as_expected ? "" : ", which is wrong");
    right &= as_expected;
  }
  return right;
}

int show(const std::string &source, const std::string &path, std::vector<int> wanted, bool edges) {
  std::sort(wanted.begin(), wanted.end());
  std::vector<WatchedEdge> watched;
  if (edges) watched = card_edges(wanted.back());
  std::vector<Canvas> rows;
  Player player(source);
  int frame = 0;
  while (frame < wanted.back() && player.next()) {
    ++frame;
    const bool keep = std::find(wanted.begin(), wanted.end(), frame) != wanted.end();
    if (!keep && watched.empty()) continue;
    const Picture input(player.input());
    const Picture drawing(player.drawing());
    watch(&watched, frame, input, drawing);
    if (keep) rows.push_back(make_row(input, drawing));
  }
  if (frame == 0) throw std::runtime_error("no frame came");
  if (frame < wanted.back()) {
    rows.push_back(make_row(Picture(player.input()), Picture(player.drawing())));
  }
  std::printf("  %d frames seen, %zu of them in %s\n", frame, rows.size(), path.c_str());
  nox::scenes::write_png(stack(rows), path);
  return report(watched) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv) {
  gst_init(&argc, &argv);
  std::vector<std::string> words(argv + 1, argv + argc);
  const bool edges = !words.empty() && words[0] == "--edges";
  if (edges) words.erase(words.begin());
  if (words.size() < 3) {
    std::fputs("usage: vectorizer_demo [--edges] SOURCE PICTURE FRAME...\n", stderr);
    return EXIT_FAILURE;
  }
  try {
    std::vector<int> wanted;
    for (std::size_t i = 2; i < words.size(); ++i) wanted.push_back(std::stoi(words[i]));
    return show(words[0], words[1], wanted, edges);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "vectorizer_demo: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
