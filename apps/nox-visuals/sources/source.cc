#include "nox-visuals/sources/source.h"

#include <filesystem>

#include "nox-visuals/errors.h"
#include "nox-visuals/gst_pointers.h"
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
  return {camera ? SourceKind::kCamera : SourceKind::kFile, path, 0};
}

GstElement *make_described_bin(const std::string &description) {
  GError *error = nullptr;
  GstElement *bin = gst_parse_bin_from_description(description.c_str(), FALSE, &error);
  if (error != nullptr) {
    if (bin != nullptr) gst_object_unref(bin);
    throw StreamError("gst:" + description + ": " + take_error(error));
  }
  const GstPointer<GstPad> open(gst_bin_find_unlinked_pad(GST_BIN(bin), GST_PAD_SRC));
  if (open == nullptr) {
    gst_object_unref(bin);
    throw StreamError("gst:" + description + ": has no open end for raw video to leave by");
  }
  gst_element_add_pad(bin, gst_ghost_pad_new("src", open.get()));
  return bin;
}

}  // namespace

Source parse_source(const std::string &word, std::uint64_t frames) {
  if (word.starts_with(kScenePrefix)) {
    return {SourceKind::kScene, word.substr(kScenePrefix.size()), frames};
  }
  if (word.starts_with(kDescriptionPrefix)) {
    return {SourceKind::kDescription, word.substr(kDescriptionPrefix.size()), 0};
  }
  if (gst_uri_is_valid(word.c_str()) != FALSE) return {SourceKind::kAddress, word, 0};
  return parse_path(word);
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
      return make_camera_bin(source.place);
    case SourceKind::kScene:
      return make_scene_bin(source.place, source.frames);
    case SourceKind::kDescription:
      return make_described_bin(source.place);
  }
  throw StreamError("unknown kind of source");
}

}  // namespace nox::app
