#include "nox-visuals/scenes/cases.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

#include "scenes/room.h"

namespace nox::scenes {
namespace {

constexpr std::uint32_t kFrames = 400;  // two rounds of the pen
constexpr std::uint32_t kFramesToLearn = 150;
constexpr int kRoomWidth = 640;
constexpr int kRoomHeight = 360;
constexpr float kNoise = 2;

constexpr PenKind kBall = PenKind::kBall;
constexpr PenKind kBare = PenKind::kBare;
// How long the shutter is open.
constexpr float kSharp = 0;
constexpr float kHalf = 0.5F;
constexpr float kBlurred = 0.8F;
constexpr Codec kH264 = Codec::kH264;
constexpr Codec kVp8 = Codec::kVp8;

// Nobody shows a pen to a camera that makes colours 1.4 times as strong.
constexpr LitPen kVivid{PenKind::kNone, 2, kSharp, 1, Range::kStudio, 1.4F};

const std::vector<Case> kCases = {
    {"lit", {kBall, 2, kSharp}, kH264, 1500},
    {"lit", {kBall, 30, kSharp}, kVp8, 1000},
    {"bottles.mp4", {kBall, 2, kSharp}, kVp8, 600},
    {"bottles.mp4", {kBall, 30, kSharp}, kH264, 1500},
    {"motorway.avi", {kBall, 30, kSharp}, kVp8, 600},
    {"white", {kBare, 30, kSharp}, kH264, 1500},
    {"white", {kBare, 30, kSharp, 0.35F}, kH264, 1500},
    {"white", {kBall, 30, kSharp}, kVp8, 1500},
    {"asl-yes.mkv", {kBare, 30, kSharp}, kH264, 1500},
    {"asl-yes.mkv", {kBare, 30, kSharp, 0.35F}, kH264, 1500},
    {"lit", {kBall, 30, kBlurred}, kH264, 1500},
    {"lit", {kBall, 30, kBlurred, 1, Range::kFull}, kVp8, 1500},
    {"bottles.mp4", {kBall, 30, kBlurred}, kVp8, 1500},
    {"motorway.avi", {kBall, 30, kBlurred}, kH264, 600},
    {"dim", {kBall, 30, kBlurred}, kVp8, 1000},
    {"red", {kBare, 30, kSharp}, kH264, 1500},
    {"red", {kBall, 10, kBlurred}, kVp8, 1000},
    {"motorway.avi", {kBare, 30, kSharp}, kVp8, 600},
    {"bottles.mp4", {kBare, 10, kSharp}, kH264, 800},
    {"dim", {kBare, 30, kSharp}, kH264, 1500},
    {"dim", {kBare, 10, kSharp, 0.35F}, kVp8, 600},
    {"icons", {kBare, 2, kSharp}, kH264, 1500},
    {"icons", {kBare, 30, kSharp}, kVp8, 1500},
    {"icons", {kBall, 30, kBlurred}, kH264, 1500},
    {"lit", {kBall, 60, kBlurred}, kH264, 1500},
    {"dim", {kBall, 60, kBlurred}, kVp8, 1500},
    {"bottles.mp4", {kBall, 60, kBlurred}, kH264, 1500},
    {"bottles.mp4", {kBall, 60, kBlurred, 0.35F}, kVp8, 1500},
    {"dim", {kBall, 60, kBlurred, 0.35F}, kH264, 1500},
    {"dim", {kBall, 30, kBlurred, 0.35F}, kVp8, 1000},
    {"bottles.mp4", {kBare, 60, kBlurred, 0.35F}, kH264, 1500},
    {"motorway.avi", {kBall, 60, kBlurred, 0.7F}, kVp8, 600},
    {"lit", {kBare, 60, kBlurred}, kVp8, 1500},
    {"dim", {kBall, 30, kHalf}, kH264, 1500},
    {"asl-yes.mkv", {kBall, 30, kHalf}, kH264, 1500},
    {"bottles.mp4", {kBall, 30, kHalf}, kVp8, 1500},
    {"motorway.avi", {kBall, 30, kHalf}, kH264, 600},
    {"bottles.mp4", {kBall, 60, kHalf}, kH264, 1500},
    {"motorway.avi", {kBall, 60, kHalf}, kVp8, 600},
    {"lit", {PenKind::kNone}, kH264, 1500},
    {"white", {PenKind::kNone}, kVp8, 1500},
    {"dim", {PenKind::kNone}, kH264, 600},
    {"icons", {PenKind::kNone}, kH264, 1500},
    {"red", {PenKind::kNone}, kVp8, 1000},
    {"bottles.mp4", {PenKind::kNone}, kH264, 1500},
    {"asl-yes.mkv", {PenKind::kNone}, kH264, 1500},
    {"asl-help.mkv", {PenKind::kNone}, kVp8, 600},
    {"motorway.avi", {PenKind::kNone}, kH264, 600},
    {"lit", kVivid, kH264, 1500},
    {"red", kVivid, kVp8, 1000},
    {"bottles.mp4", kVivid, kH264, 1500},
    {"asl-yes.mkv", kVivid, kH264, 1500},
    {"asl-help.mkv", kVivid, kVp8, 600},
    {"motorway.avi", kVivid, kH264, 600},
};

const char *kind_name(PenKind kind) {
  return kind == PenKind::kNone ? "no pen" : kind == PenKind::kBall ? "ball" : "bare LED";
}

struct Backdrop {
  int width, height;
  std::uint32_t frames;
  float noise;
  LitScene::Background draw;
};

Backdrop open_room(const Case &scene) {
  auto room = std::make_shared<Room>(scene.background, kRoomWidth, kRoomHeight, scene.pen.exposure,
                                     scene.pen.range);
  return {kRoomWidth, kRoomHeight, kFrames, kNoise,
          [room](std::uint32_t index, NoxVideoFrame *frame) { room->render(index, frame); }};
}

Backdrop open_video(const Case &scene, const std::string &videos) {
  auto clip = std::make_shared<Clip>(read_clip(videos + "/" + scene.background, kFrames));
  const auto draw = [clip, pen = scene.pen](std::uint32_t index, NoxVideoFrame *frame) {
    std::memcpy(frame->planes[0], clip->frame(index).planes[0], clip->frame_bytes());
    if (pen.exposure < 1) expose(frame, pen.exposure, pen.range);
  };
  return {clip->width(), clip->height(), static_cast<std::uint32_t>(clip->frames()), 0, draw};
}

}  // namespace

std::string Case::name() const {
  std::string text = std::string(kind_name(pen.kind));
  char part[32];
  if (pen.kind != PenKind::kNone) {
    std::snprintf(part, sizeof part, ", %g px", static_cast<double>(pen.speed));
    text += part;
    if (pen.open > 0) {
      std::snprintf(part, sizeof part, ", open %g", static_cast<double>(pen.open));
      text += part;
    }
  }
  text += ", " + background.substr(0, background.find('.'));
  if (pen.exposure < 1) {
    std::snprintf(part, sizeof part, ", exposure %g", static_cast<double>(pen.exposure));
    text += part;
  }
  if (pen.colours > 1) {
    std::snprintf(part, sizeof part, ", colours %g", static_cast<double>(pen.colours));
    text += part;
  }
  if (pen.range == Range::kFull) text += ", full range";
  std::snprintf(part, sizeof part, ", %s %d", codec == kH264 ? "H.264" : "VP8", kbits);
  return text + part;
}

std::string Case::file_name() const {
  std::string file;
  for (const char letter : name()) {
    if (letter == ' ') file += '-';
    if (letter != ' ' && letter != ',') file += letter;
  }
  return file + ".mkv";
}

std::vector<Case> all_cases(const std::string &videos) {
  std::vector<Case> cases;
  const bool have_videos = std::filesystem::is_directory(videos);
  std::copy_if(kCases.begin(), kCases.end(), std::back_inserter(cases),
               [&](const Case &it) { return it.is_room() || have_videos; });
  return cases;
}

Recording record(const Case &scene, const std::string &folder, const std::string &videos) {
  const std::string path = folder + "/" + scene.file_name();
  const Backdrop back = scene.is_room() ? open_room(scene) : open_video(scene, videos);
  const LitScene lit(back.width, back.height, scene.pen, back.frames, back.draw);
  if (!std::filesystem::exists(path)) {
    write_clip(path, scene.codec, scene.kbits, back.width, back.height, back.frames,
               [&](std::uint32_t i, NoxVideoFrame *frame) { lit.render(i, back.noise, frame); });
  }
  Recording recording{read_clip(path, back.frames), {}};
  for (std::uint32_t i = 0; i < back.frames; ++i) recording.truth.push_back(lit.truth(i));
  return recording;
}

Clip record_without_pen(const Case &scene, const std::string &folder, const std::string &videos) {
  Case empty = scene;
  empty.pen.kind = PenKind::kNone;
  record(empty, folder, videos);
  return read_clip(folder + "/" + empty.file_name(), kFramesToLearn);
}

}  // namespace nox::scenes
