#include "nox-visuals/support/camera_model.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

constexpr std::int32_t kWidth = 448;
constexpr std::int32_t kHeight = 252;
constexpr double kNormalExposure = 100;
constexpr double kAutomaticExposure = 250;
constexpr double kRate = 30;
constexpr double kNoise = 1.5;  // its standard deviation, in levels

// Which control is the user's only while the other one is at this value.
struct Dependence {
  std::uint32_t id, automatic;
  std::int64_t free_at;
};
constexpr std::array<Dependence, 3> kDependences = {{
    {V4L2_CID_EXPOSURE_ABSOLUTE, V4L2_CID_EXPOSURE_AUTO, V4L2_EXPOSURE_MANUAL},
    {V4L2_CID_GAIN, V4L2_CID_AUTOGAIN, 0},
    {V4L2_CID_WHITE_BALANCE_TEMPERATURE, V4L2_CID_AUTO_WHITE_BALANCE, 0},
}};

CameraControl make_control(std::uint32_t id, const char *name, std::uint32_t type,
                           std::int64_t most, std::int64_t value) {
  return {id, name, type, 0, 0, most, 1, value, value, {}};
}

}  // namespace

CameraModel::CameraModel() {
  nox_video_frame_alloc(&frame_, kNoxFormatI420 | kNoxFormatStudioRange, kWidth, kHeight);
  for (int &it : noise_) {
    // The sum of three uniform numbers is close enough to a bell.
    const double bell =
        random_.between(-100, 100) + random_.between(-100, 100) + random_.between(-100, 100);
    it = static_cast<int>(std::lround(kNoise * bell / 100));
  }
  all_modes = {{"YUYV", 640, 480, kRate}, {"MJPG", 1280, 720, kRate}};
  mode_ = CameraMode{"MJPG", 1280, 720, kRate};
  all_controls = {
      make_control(V4L2_CID_EXPOSURE_AUTO, "auto_exposure", V4L2_CTRL_TYPE_MENU, 3,
                   V4L2_EXPOSURE_APERTURE_PRIORITY),
      make_control(V4L2_CID_EXPOSURE_ABSOLUTE, "exposure_time_absolute", V4L2_CTRL_TYPE_INTEGER,
                   2000, 157),
      make_control(V4L2_CID_EXPOSURE_AUTO_PRIORITY, "exposure_dynamic_framerate",
                   V4L2_CTRL_TYPE_BOOLEAN, 1, 1),
      make_control(V4L2_CID_AUTO_WHITE_BALANCE, "white_balance_automatic", V4L2_CTRL_TYPE_BOOLEAN,
                   1, 1),
      make_control(V4L2_CID_WHITE_BALANCE_TEMPERATURE, "white_balance_temperature",
                   V4L2_CTRL_TYPE_INTEGER, 6500, 4600),
      make_control(V4L2_CID_AUTOGAIN, "gain_automatic", V4L2_CTRL_TYPE_BOOLEAN, 1, 1),
      make_control(V4L2_CID_GAIN, "gain", V4L2_CTRL_TYPE_INTEGER, 255, 32),
      make_control(V4L2_CID_SATURATION, "saturation", V4L2_CTRL_TYPE_INTEGER, 255, 64),
  };
  control(V4L2_CID_EXPOSURE_AUTO).choices = {V4L2_EXPOSURE_MANUAL, V4L2_EXPOSURE_APERTURE_PRIORITY};
  control(V4L2_CID_EXPOSURE_ABSOLUTE).minimum = 3;
  control(V4L2_CID_GAIN).value = 80;        // as the automatic has left it
  control(V4L2_CID_SATURATION).value = 90;  // as somebody liked it
}

CameraModel::~CameraModel() {
  nox_video_frame_free_planes(&frame_);
}

CameraControl &CameraModel::control(std::uint32_t id) {
  return *std::find_if(all_controls.begin(), all_controls.end(),
                       [id](const CameraControl &it) { return it.id == id; });
}

std::string CameraModel::identity() const {
  return gone() ? "" : "model of a camera";
}

std::vector<CameraControl> CameraModel::controls() const {
  if (gone()) return {};
  std::vector<CameraControl> controls = all_controls;
  for (CameraControl &it : controls) {
    for (const Dependence &dependence : kDependences) {
      const CameraControl *automatic = find_control(all_controls, dependence.automatic);
      if (it.id == dependence.id && automatic != nullptr &&
          automatic->value != dependence.free_at) {
        it.flags |= V4L2_CTRL_FLAG_INACTIVE;
      }
    }
  }
  return controls;
}

bool CameraModel::set(std::uint32_t id, std::int64_t value) {
  ++changes_;
  const auto now = controls();
  const CameraControl *it = find_control(now, id);
  if (it == nullptr || !is_writable(*it) || !is_active(*it)) return false;
  if (value < it->minimum || value > it->maximum) return false;
  if (const auto maker = takes.find(id); maker != takes.end()) {
    const auto made = maker->second(value);
    if (!made) return false;
    value = *made;
  }
  if (std::find(liars.begin(), liars.end(), id) != liars.end()) truth_.emplace(id, it->value);
  control(id).value = value;
  return true;
}

bool CameraModel::set_mode(const CameraMode &mode) {
  ++changes_;
  if (gone()) return false;
  mode_ = mode;
  return true;
}

// What the control does, which is not always what it says.
std::int64_t CameraModel::effective(std::uint32_t id) const {
  if (const auto truth = truth_.find(id); truth != truth_.end()) {
    return truth->second;
  }
  return find_control(all_controls, id)->value;
}

CameraModel::Response CameraModel::response() const {
  Response response;
  const auto has = [&](std::uint32_t id) { return find_control(all_controls, id) != nullptr; };
  double exposure = kAutomaticExposure;
  if (has(V4L2_CID_EXPOSURE_AUTO) && has(V4L2_CID_EXPOSURE_ABSOLUTE) &&
      effective(V4L2_CID_EXPOSURE_AUTO) == V4L2_EXPOSURE_MANUAL) {
    exposure = static_cast<double>(effective(V4L2_CID_EXPOSURE_ABSOLUTE));
  }
  response.light = exposure / kNormalExposure;
  for (const auto &[id, factor] : {std::pair{V4L2_CID_GAIN, &response.light},
                                   std::pair{V4L2_CID_SATURATION, &response.colour}}) {
    if (!has(id)) continue;
    *factor *= static_cast<double>(effective(id)) /
               static_cast<double>(find_control(all_controls, id)->default_value);
  }
  return response;
}

// Noise of the model's strength around a level, from another place of the table for each row.
void CameraModel::fill(std::uint8_t *row, std::int32_t count, double level) {
  const auto middle = static_cast<int>(std::lround(level));
  auto at = static_cast<std::size_t>(random_.bits() % noise_.size());
  for (std::int32_t x = 0; x < count; ++x) {
    row[x] = static_cast<std::uint8_t>(std::clamp(middle + noise_[at], 1, 254));
    if (++at == noise_.size()) at = 0;
  }
}

// What is too bright for the sensor turns white.
void CameraModel::draw(const std::vector<ScenePatch> &patches, const Response &response) {
  constexpr double kBlack = 16;
  constexpr double kWhite = 235;
  for (const ScenePatch &patch : patches) {
    const double luma = patch.luma * response.light;
    const double washed = std::min(1.0, (kWhite - kBlack) / std::max(luma, 1.0));
    const double strength = response.light * response.colour * washed;
    const std::array<double, 3> levels = {std::min(kBlack + luma, kWhite), 128 + patch.u * strength,
                                          128 + patch.v * strength};
    for (int plane = 0; plane < 3; ++plane) {
      const int half = plane == 0 ? 0 : 1;
      const auto level = std::clamp(levels[static_cast<std::size_t>(plane)], 16.0, 240.0);
      for (int y = patch.y >> half; y < (patch.y + patch.height) >> half; ++y) {
        std::uint8_t *row = frame_.planes[plane] + y * frame_.strides[plane];
        const int x = patch.x >> half;
        fill(row + x, ((patch.x + patch.width) >> half) - x, level);
      }
    }
  }
}

CameraPicture CameraModel::next() {
  ++picture_;
  if (gone()) throw StreamError("the camera was pulled out");
  late_.push_back(response());
  if (late_.size() > static_cast<std::size_t>(delay) + 1) late_.pop_front();
  std::vector<ScenePatch> patches = {{0, 0, kWidth, kHeight, 40, 0, 0}};
  patches.insert(patches.end(), scene.begin(), scene.end());
  if (visitors) {
    const auto more = visitors(picture_);
    patches.insert(patches.end(), more.begin(), more.end());
  }
  draw(patches, late_.front());
  return {&frame_, picture_ / kRate};
}

}  // namespace nox::app
