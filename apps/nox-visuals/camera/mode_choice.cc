#include "nox-visuals/camera/mode_choice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <tuple>
#include <utility>

#include "nox-visuals/errors.h"
#include "pentracker/pen_tracker.h"

namespace nox::app {
namespace {

constexpr std::array<std::pair<const char *, const char *>, 16> kRawFormats = {{
    {"YUYV", "YUY2"},
    {"UYVY", "UYVY"},
    {"YVYU", "YVYU"},
    {"VYUY", "VYUY"},
    {"NV12", "NV12"},
    {"NV21", "NV21"},
    {"NV16", "NV16"},
    {"NV61", "NV61"},
    {"YU12", "I420"},
    {"YV12", "YV12"},
    {"422P", "Y42B"},
    {"RGB3", "RGB"},
    {"BGR3", "BGR"},
    {"BX24", "xRGB"},
    {"XR24", "BGRx"},
    {"RGBP", "RGB16"},
}};

bool is_jpeg(const CameraMode &mode) {
  return mode.format == "MJPG" || mode.format == "JPEG";
}

bool is_usable(const CameraMode &mode) {
  return (is_jpeg(mode) || raw_format(mode.format) != nullptr) && mode.rate > 0;
}

std::uint64_t area(const CameraMode &mode) {
  return std::uint64_t{mode.width} * mode.height;
}

// 30 and 30000/1001 are equally fast.
long whole_rate(double rate) {
  return std::lround(rate);
}

bool same_aspect(const CameraMode &a, const CameraMode &b) {
  constexpr double kTolerance = 0.02;  // sizes are multiples of 8 or 16
  const double ratio = (double{1} * a.width * b.height) / (double{1} * b.width * a.height);
  return std::abs(ratio - 1) < kTolerance;
}

// The index in kRawFormats stands in for a taste among raw formats: fewer bytes and no conversion
// of colours come first.
std::size_t format_rank(const CameraMode &mode) {
  const auto found = std::find_if(kRawFormats.begin(), kRawFormats.end(),
                                  [&](const auto &it) { return mode.format == it.first; });
  return static_cast<std::size_t>(found - kRawFormats.begin());
}

// The better mode is the lesser.
auto rank(const CameraMode &mode, const CameraMode &largest) {
  return std::tuple(-whole_rate(mode.rate), is_jpeg(mode), !same_aspect(mode, largest), area(mode),
                    format_rank(mode));
}

template <typename Serves>
std::optional<CameraMode> best_of(const std::vector<CameraMode> &modes, Serves serves) {
  const auto largest =
      std::max_element(modes.begin(), modes.end(),
                       [](const CameraMode &a, const CameraMode &b) { return area(a) < area(b); });
  std::optional<CameraMode> best;
  for (const CameraMode &mode : modes) {
    if (!is_usable(mode) || !serves(mode)) continue;
    if (!best || rank(mode, *largest) < rank(*best, *largest)) best = mode;
  }
  return best;
}

}  // namespace

const char *raw_format(const std::string &four_characters) {
  for (const auto &[ours, theirs] : kRawFormats) {
    if (four_characters == ours) return theirs;
  }
  return nullptr;
}

std::optional<WantedMode> parse_mode(const std::string &text) {
  WantedMode wanted;
  int read = 0;
  const char *whole = text.c_str();
  const bool sized = std::sscanf(whole, "%5ux%5u%n", &wanted.width, &wanted.height, &read) == 2;
  if (!sized || wanted.width == 0 || wanted.height == 0) return {};
  const std::string rest = text.substr(static_cast<std::size_t>(read));
  if (rest.empty()) return wanted;
  read = 0;
  const bool rated = std::sscanf(rest.c_str(), "@%7lf%n", &wanted.rate, &read) == 1;
  const bool right = rated && std::isfinite(wanted.rate) && wanted.rate > 0;
  if (!right || static_cast<std::size_t>(read) != rest.size()) return {};
  return wanted;
}

std::optional<CameraMode> choose_mode(const std::vector<CameraMode> &modes) {
  return best_of(modes, [](const CameraMode &mode) {
    return mode.width >= kPenWorkWidth && mode.height >= kPenWorkHeight;
  });
}

std::optional<CameraMode> find_mode(const std::vector<CameraMode> &modes,
                                    const WantedMode &wanted) {
  return best_of(modes, [&](const CameraMode &mode) {
    const bool rated = wanted.rate == 0 || whole_rate(mode.rate) == whole_rate(wanted.rate);
    return mode.width == wanted.width && mode.height == wanted.height && rated;
  });
}

std::optional<CameraMode> pick_mode(const std::vector<CameraMode> &modes,
                                    const std::optional<WantedMode> &wanted) {
  if (!wanted) return choose_mode(modes);
  const std::optional<CameraMode> found = find_mode(modes, *wanted);
  if (found) return found;
  const CameraMode missing{"", wanted->width, wanted->height, wanted->rate};
  std::string list;
  for (const CameraMode &mode : modes) {
    const std::string word = is_usable(mode) ? " " + mode_word(mode) : "";
    if ((list + " ").find(word + " ") == std::string::npos) list += word;
  }
  throw StreamError("the camera has no mode " + mode_word(missing) +
                    (list.empty() ? "" : "; it has" + list));
}

std::string mode_word(const CameraMode &mode) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%ux%u@%.4g", mode.width, mode.height, mode.rate);
  return text.data();
}

std::string mode_text(const CameraMode &mode) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s %ux%u at %.4g", mode.format.c_str(), mode.width,
                mode.height, mode.rate);
  return text.data();
}

}  // namespace nox::app
