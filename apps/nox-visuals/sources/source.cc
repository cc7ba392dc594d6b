#include "nox-visuals/sources/source.h"

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/sources/camera_source.h"
#include "nox-visuals/sources/decoder_source.h"
#include "nox-visuals/sources/scene_source.h"

namespace nox::app {
namespace {

constexpr std::string_view kScenePrefix = "test:";
constexpr std::string_view kDescriptionPrefix = "gst:";

Source parse_path(const std::string &path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    throw StreamError(path + ": there is no such file or device");
  }
  if (error) throw StreamError(path + ": " + error.message());
  if (status.type() == std::filesystem::file_type::directory) {
    throw StreamError(path + ": is a folder, not a video");
  }
  const bool camera = status.type() == std::filesystem::file_type::character;
  return {camera ? SourceKind::kCamera : SourceKind::kFile, path, 0, {}};
}

// Descriptions may end with the caps of raw video, which an element has to follow.
constexpr const char *kEnd = "nox-visuals-end";

bool brings_video(GstPad *pad) {
  const GstPointer<GstCaps> brought(gst_pad_query_caps(pad, nullptr));
  const GstPointer<GstCaps> raw(gst_caps_new_empty_simple("video/x-raw"));
  return gst_caps_can_intersect(brought.get(), raw.get()) != FALSE;
}

GstElement *make_described_bin(const std::string &description) {
  GError *error = nullptr;
  GstElement *parsed = gst_parse_bin_from_description_full(
      (description + " ! identity silent=true name=" + kEnd).c_str(), FALSE, nullptr,
      GST_PARSE_FLAG_FATAL_ERRORS, &error);
  if (parsed == nullptr) throw StreamError("gst:" + description + ": " + take_error(error));
  GstPointer<GstElement> bin(GST_ELEMENT(gst_object_ref_sink(parsed)));
  const GstPointer<GstElement> end(gst_bin_get_by_name(GST_BIN(parsed), kEnd));
  const GstPointer<GstPad> src(gst_element_get_static_pad(end.get(), "src"));
  if (!brings_video(src.get())) {
    throw StreamError("gst:" + description + ": brings no raw video");
  }
  gst_element_add_pad(parsed, gst_ghost_pad_new("src", src.get()));
  g_object_force_floating(G_OBJECT(parsed));
  return bin.release();
}

}  // namespace

Source parse_source(const std::string &word, std::uint64_t frames) {
  if (word.starts_with(kScenePrefix)) {
    return {SourceKind::kScene, word.substr(kScenePrefix.size()), frames, {}};
  }
  if (word.starts_with(kDescriptionPrefix)) {
    return {SourceKind::kDescription, word.substr(kDescriptionPrefix.size()), 0, {}};
  }
  if (gst_uri_is_valid(word.c_str()) != FALSE) return {SourceKind::kAddress, word, 0, {}};
  return parse_path(word);
}

std::filesystem::path file_path(const Source &source) {
  if (source.kind == SourceKind::kFile) return source.place;
  if (source.kind != SourceKind::kAddress) return {};
  return take_string(g_filename_from_uri(source.place.c_str(), nullptr, nullptr));
}

bool comes_back(const Source &source, bool live) {
  return source.kind == SourceKind::kCamera || (source.kind == SourceKind::kAddress && live);
}

GstElement *make_source_bin(const Source &source) {
  switch (source.kind) {
    case SourceKind::kFile:
      return make_file_bin(source.place);
    case SourceKind::kAddress:
      return make_address_bin(source.place);
    case SourceKind::kCamera:
      return make_camera_bin(source.place, source.camera);
    case SourceKind::kScene:
      return make_scene_bin({source.place, source.frames});
    case SourceKind::kDescription:
      return make_described_bin(source.place);
  }
  throw StreamError("unknown kind of source");
}

}  // namespace nox::app
