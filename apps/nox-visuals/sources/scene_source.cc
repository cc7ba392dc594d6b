#include "nox-visuals/sources/scene_source.h"

#include <gst/app/gstappsrc.h>

#include <functional>
#include <memory>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "scenes/edge_scene.h"
#include "scenes/pen_scene.h"
#include "scenes/qr_scene.h"
#include "video/nox_video_frame.h"

namespace nox::app {
namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 360;
constexpr int kRate = 30;
constexpr const char *kCaps =
    "video/x-raw,format=I420,width=640,height=360,framerate=30/1,colorimetry=bt601";

using Draw = std::function<void(std::uint32_t index, NoxVideoFrame *frame)>;

Draw open_scene(const std::string &name) {
  if (name == "pen") {
    return [scene = std::make_shared<scenes::PenScene>(kWidth, kHeight)](auto index, auto *frame) {
      scene->render(index, frame);
    };
  }
  if (name == "qr") {
    const std::vector<std::string> payloads = {"https://example.org/nox",
                                               "Gr\xC3\xBC\xC3\x9F Gott"};
    return [scene = std::make_shared<scenes::QrScene>(kWidth, kHeight, payloads)](
               auto index, auto *frame) { scene->render(index, frame); };
  }
  if (name == "edges") {  // which counts its frames from 1
    return [scene = std::make_shared<scenes::EdgeScene>(kWidth, kHeight)](auto index, auto *frame) {
      scene->render(index + 1, frame);
    };
  }
  throw StreamError("test:" + name + ": there is no such scene; there are pen, qr and edges");
}

// What fills the buffers, owned by the element.
struct Scene {
  Draw draw;
  std::uint64_t frames;
  std::uint64_t next = 0;
};

// The planes of a frame without padding, in a buffer of its own.
GstBuffer *draw_buffer(const Draw &draw, std::uint64_t index) {
  constexpr gsize kLuma = gsize{kWidth} * kHeight;
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, kLuma * 3 / 2, nullptr);
  GstMapInfo map;
  if (gst_buffer_map(buffer, &map, GST_MAP_WRITE) == FALSE) return buffer;
  NoxVideoFrame frame{};
  frame.format = kNoxFormatI420 | kNoxFormatStudioRange;
  frame.width = kWidth;
  frame.height = kHeight;
  frame.n_planes = 3;
  std::uint8_t *plane = map.data;
  for (int p = 0; p < frame.n_planes; ++p) {
    const int shift = p == 0 ? 0 : 1;
    frame.planes[p] = plane;
    frame.strides[p] = frame.plane_widths[p] = kWidth >> shift;
    frame.plane_heights[p] = kHeight >> shift;
    plane += (kWidth >> shift) * (kHeight >> shift);
  }
  draw(static_cast<std::uint32_t>(index), &frame);
  gst_buffer_unmap(buffer, &map);
  return buffer;
}

void push_frame(GstAppSrc *source, guint /*length*/, gpointer data) {
  auto *scene = static_cast<Scene *>(data);
  if (scene->frames != 0 && scene->next == scene->frames) {
    gst_app_src_end_of_stream(source);
    return;
  }
  GstBuffer *buffer = draw_buffer(scene->draw, scene->next);
  GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(scene->next, GST_SECOND, kRate);
  GST_BUFFER_DURATION(buffer) = GST_SECOND / kRate;
  ++scene->next;
  gst_app_src_push_buffer(source, buffer);
}

void drop_scene(gpointer scene) {
  delete static_cast<Scene *>(scene);
}

}  // namespace

GstElement *make_scene_bin(const std::string &name, std::uint64_t frames) {
  auto scene = std::make_unique<Scene>(Scene{open_scene(name), frames});
  GError *error = nullptr;
  GstElement *bin = gst_parse_bin_from_description(
      "appsrc name=scene is-live=true format=time max-buffers=2 ! clocksync", TRUE, &error);
  if (error != nullptr) throw StreamError(take_error(error));
  const GstPointer<GstElement> source(gst_bin_get_by_name(GST_BIN(bin), "scene"));
  const GstPointer<GstCaps> caps(gst_caps_from_string(kCaps));
  gst_app_src_set_caps(GST_APP_SRC(source.get()), caps.get());
  GstAppSrcCallbacks callbacks{};
  callbacks.need_data = push_frame;
  gst_app_src_set_callbacks(GST_APP_SRC(source.get()), &callbacks, scene.release(), drop_scene);
  return bin;
}

}  // namespace nox::app
