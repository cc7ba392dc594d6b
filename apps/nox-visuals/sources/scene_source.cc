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

constexpr int kRate = 30;

using Draw = std::function<void(std::uint32_t index, NoxVideoFrame *frame)>;

Draw open_scene(const std::string &name, int width, int height) {
  if (name == "pen") {
    return [scene = std::make_shared<scenes::PenScene>(width, height)](auto index, auto *frame) {
      scene->render(index, frame);
    };
  }
  if (name == "qr") {
    const std::vector<std::string> payloads = {"https://example.org/nox",
                                               "Gr\xC3\xBC\xC3\x9F Gott"};
    return [scene = std::make_shared<scenes::QrScene>(width, height, payloads)](
               auto index, auto *frame) { scene->render(index, frame); };
  }
  if (name == "edges") {  // which counts its frames from 1
    return [scene = std::make_shared<scenes::EdgeScene>(width, height)](auto index, auto *frame) {
      scene->render(index + 1, frame);
    };
  }
  throw StreamError("test:" + name + ": there is no such scene; there are pen, qr and edges");
}

// What fills the buffers, owned by the element.
struct Drawer {
  Draw draw;
  Scene scene;
  std::uint64_t next = 0;
};

// The planes of a frame without padding, in a buffer of its own.
GstBuffer *draw_buffer(const Drawer &drawer) {
  const int width = drawer.scene.width;
  const int height = drawer.scene.height;
  const gsize luma = static_cast<gsize>(width) * static_cast<gsize>(height);
  GstBuffer *buffer = gst_buffer_new_allocate(nullptr, luma * 3 / 2, nullptr);
  GstMapInfo map;
  if (gst_buffer_map(buffer, &map, GST_MAP_WRITE) == FALSE) return buffer;
  NoxVideoFrame frame{};
  frame.format = kNoxFormatI420 | kNoxFormatStudioRange;
  frame.width = width;
  frame.height = height;
  frame.n_planes = 3;
  std::uint8_t *plane = map.data;
  for (int p = 0; p < frame.n_planes; ++p) {
    const int shift = p == 0 ? 0 : 1;
    frame.planes[p] = plane;
    frame.strides[p] = frame.plane_widths[p] = width >> shift;
    frame.plane_heights[p] = height >> shift;
    plane += (width >> shift) * (height >> shift);
  }
  drawer.draw(static_cast<std::uint32_t>(drawer.next), &frame);
  gst_buffer_unmap(buffer, &map);
  return buffer;
}

void push_frame(GstAppSrc *source, guint /*length*/, gpointer data) {
  auto *drawer = static_cast<Drawer *>(data);
  if (drawer->scene.frames != 0 && drawer->next == drawer->scene.frames) {
    gst_app_src_end_of_stream(source);
    return;
  }
  GstBuffer *buffer = draw_buffer(*drawer);
  GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(drawer->next, GST_SECOND, kRate);
  GST_BUFFER_DURATION(buffer) = GST_SECOND / kRate;
  ++drawer->next;
  gst_app_src_push_buffer(source, buffer);
}

void drop_drawer(gpointer drawer) {
  delete static_cast<Drawer *>(drawer);
}

GstPointer<GstCaps> caps_of(const Scene &scene) {
  return GstPointer<GstCaps>(gst_caps_new_simple(
      "video/x-raw", "format", G_TYPE_STRING, "I420", "width", G_TYPE_INT, scene.width, "height",
      G_TYPE_INT, scene.height, "framerate", GST_TYPE_FRACTION, kRate, 1, "colorimetry",
      G_TYPE_STRING, "bt601", nullptr));
}

}  // namespace

GstElement *make_scene_bin(const Scene &scene) {
  auto drawer =
      std::make_unique<Drawer>(Drawer{open_scene(scene.name, scene.width, scene.height), scene});
  std::string description = "appsrc name=scene format=time max-buffers=2";
  if (scene.live) description += " is-live=true ! clocksync";
  GError *error = nullptr;
  GstElement *bin = gst_parse_bin_from_description(description.c_str(), TRUE, &error);
  if (error != nullptr) throw StreamError(take_error(error));
  const GstPointer<GstElement> source(gst_bin_get_by_name(GST_BIN(bin), "scene"));
  gst_app_src_set_caps(GST_APP_SRC(source.get()), caps_of(scene).get());
  GstAppSrcCallbacks callbacks{};
  callbacks.need_data = push_frame;
  gst_app_src_set_callbacks(GST_APP_SRC(source.get()), &callbacks, drawer.release(), drop_drawer);
  return bin;
}

}  // namespace nox::app
