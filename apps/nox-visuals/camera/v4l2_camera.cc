#include "nox-visuals/camera/v4l2_camera.h"

#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "nox-visuals/errors.h"

namespace nox::app {
namespace {

int call(int file, unsigned long request, void *argument) {
  int result;
  do {
    result = ioctl(file, request, argument);
  } while (result < 0 && errno == EINTR);
  return result;
}

std::string four_characters(std::uint32_t format) {
  std::string text;
  for (int byte = 0; byte < 4; ++byte) text += static_cast<char>(format >> 8 * byte & 0x7F);
  return text;
}

// Of text that has four characters.
std::uint32_t format_code(const std::string &text) {
  std::uint32_t code = 0;
  for (std::uint32_t byte = 0; byte < 4; ++byte) {
    code |= std::uint32_t{static_cast<unsigned char>(text[byte])} << 8 * byte;
  }
  return code;
}

std::string text_of(const std::uint8_t *bytes, std::size_t size) {
  return {bytes, std::find(bytes, bytes + size, 0)};
}

double per_second(const v4l2_fract &interval) {
  return interval.numerator == 0 ? 0 : double{1} * interval.denominator / interval.numerator;
}

// Of a camera that takes any rate within bounds: what is faster is the driver's bound more often
// than the sensor's.
double rate_within(const v4l2_frmival_stepwise &bounds) {
  constexpr double kUsual = 60;
  return std::max(std::min(kUsual, per_second(bounds.min)), per_second(bounds.max));
}

bool has_one_value(std::uint32_t type) {
  switch (type) {
    case V4L2_CTRL_TYPE_INTEGER:
    case V4L2_CTRL_TYPE_BOOLEAN:
    case V4L2_CTRL_TYPE_MENU:
    case V4L2_CTRL_TYPE_INTEGER_MENU:
    case V4L2_CTRL_TYPE_INTEGER64:
    case V4L2_CTRL_TYPE_BITMASK:
      return true;
    default:
      return false;
  }
}

// Sizes that people and drivers are used to, for cameras that take any within bounds.
constexpr std::array<std::array<std::uint32_t, 2>, 4> kUsualSizes = {
    {{640, 360}, {640, 480}, {1280, 720}, {1920, 1080}}};

bool takes(const v4l2_frmsize_stepwise &bounds, std::uint32_t width, std::uint32_t height) {
  const auto fits = [](std::uint32_t size, std::uint32_t least, std::uint32_t most,
                       std::uint32_t step) {
    return size >= least && size <= most && (size - least) % std::max(step, 1U) == 0;
  };
  return fits(width, bounds.min_width, bounds.max_width, bounds.step_width) &&
         fits(height, bounds.min_height, bounds.max_height, bounds.step_height);
}

}  // namespace

std::string control_name(const std::string &name) {
  std::string out;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    } else if (!out.empty() && out.back() != '_') {
      out += '_';
    }
  }
  while (!out.empty() && out.back() == '_') out.pop_back();
  return out;
}

V4l2Camera::V4l2Camera(const std::string &device)
    : file_(open(device.c_str(), O_RDWR | O_CLOEXEC)) {
  if (file_ < 0) throw StreamError(device + ": " + std::strerror(errno));
  v4l2_capability capability{};
  if (call(file_, VIDIOC_QUERYCAP, &capability) < 0) {
    close(file_);
    throw StreamError(device + ": is no camera");
  }
}

V4l2Camera::~V4l2Camera() {
  close(file_);
}

std::string V4l2Camera::identity() const {
  v4l2_capability it{};
  if (call(file_, VIDIOC_QUERYCAP, &it) < 0) return "";
  return text_of(it.driver, sizeof it.driver) + " " + text_of(it.card, sizeof it.card) + " " +
         text_of(it.bus_info, sizeof it.bus_info);
}

std::vector<CameraMode> V4l2Camera::modes() const {
  std::vector<CameraMode> modes;
  v4l2_fmtdesc format{};
  format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  for (; call(file_, VIDIOC_ENUM_FMT, &format) == 0; ++format.index) {
    add_sizes(format.pixelformat, &modes);
  }
  return modes;
}

// Of a camera that takes any size within bounds, the smallest, the largest and the usual ones stand
// for all.
void V4l2Camera::add_sizes(std::uint32_t format, std::vector<CameraMode> *modes) const {
  v4l2_frmsizeenum size{};
  size.pixel_format = format;
  for (; call(file_, VIDIOC_ENUM_FRAMESIZES, &size) == 0; ++size.index) {
    if (size.type == V4L2_FRMSIZE_TYPE_DISCRETE) {
      add_rates(format, size.discrete.width, size.discrete.height, modes);
    } else {
      add_rates(format, size.stepwise.min_width, size.stepwise.min_height, modes);
      for (const auto &[width, height] : kUsualSizes) {
        if (takes(size.stepwise, width, height)) add_rates(format, width, height, modes);
      }
      add_rates(format, size.stepwise.max_width, size.stepwise.max_height, modes);
      return;
    }
  }
}

void V4l2Camera::add_rates(std::uint32_t format, std::uint32_t width, std::uint32_t height,
                           std::vector<CameraMode> *modes) const {
  v4l2_frmivalenum interval{};
  interval.pixel_format = format;
  interval.width = width;
  interval.height = height;
  for (; call(file_, VIDIOC_ENUM_FRAMEINTERVALS, &interval) == 0; ++interval.index) {
    const bool discrete = interval.type == V4L2_FRMIVAL_TYPE_DISCRETE;
    const double rate = discrete ? per_second(interval.discrete) : rate_within(interval.stepwise);
    modes->push_back({four_characters(format), width, height, rate});
    if (!discrete) return;
  }
}

std::optional<CameraMode> V4l2Camera::mode() const {
  v4l2_format format{};
  format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  if (call(file_, VIDIOC_G_FMT, &format) < 0) return {};
  v4l2_streamparm rate{};
  rate.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  const bool rated = call(file_, VIDIOC_G_PARM, &rate) == 0;
  return CameraMode{four_characters(format.fmt.pix.pixelformat), format.fmt.pix.width,
                    format.fmt.pix.height, rated ? per_second(rate.parm.capture.timeperframe) : 0};
}

bool V4l2Camera::set_mode(const CameraMode &mode) {
  v4l2_format format{};
  format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  format.fmt.pix.width = mode.width;
  format.fmt.pix.height = mode.height;
  format.fmt.pix.pixelformat = format_code(mode.format);
  if (call(file_, VIDIOC_S_FMT, &format) < 0) return false;
  if (mode.rate <= 0) return true;
  constexpr double kDenominator = 1001;  // in which the rates of television are whole
  v4l2_streamparm rate{};
  rate.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  rate.parm.capture.timeperframe = {
      static_cast<std::uint32_t>(kDenominator),
      static_cast<std::uint32_t>(std::lround(mode.rate * kDenominator))};
  return call(file_, VIDIOC_S_PARM, &rate) == 0;
}

std::vector<CameraControl> V4l2Camera::controls() const {
  constexpr std::uint32_t kNext = V4L2_CTRL_FLAG_NEXT_CTRL;
  std::vector<CameraControl> controls;
  v4l2_query_ext_ctrl query{};
  for (query.id = kNext; call(file_, VIDIOC_QUERY_EXT_CTRL, &query) == 0; query.id |= kNext) {
    if (!has_one_value(query.type) || (query.flags & V4L2_CTRL_FLAG_DISABLED) != 0) continue;
    CameraControl control{query.id,
                          control_name(query.name),
                          query.type,
                          query.flags,
                          query.minimum,
                          query.maximum,
                          static_cast<std::int64_t>(query.step),
                          query.default_value,
                          0,
                          {}};
    if (!read_value(&control)) continue;
    control.choices = menu_choices(control);
    controls.push_back(control);
  }
  return controls;
}

std::vector<std::int64_t> V4l2Camera::menu_choices(const CameraControl &control) const {
  std::vector<std::int64_t> choices;
  const bool menu =
      control.type == V4L2_CTRL_TYPE_MENU || control.type == V4L2_CTRL_TYPE_INTEGER_MENU;
  for (std::int64_t i = control.minimum; menu && i <= control.maximum; ++i) {
    v4l2_querymenu item{};
    item.id = control.id;
    item.index = static_cast<std::uint32_t>(i);
    if (call(file_, VIDIOC_QUERYMENU, &item) == 0) choices.push_back(i);
  }
  return choices;
}

bool V4l2Camera::set(std::uint32_t control, std::int64_t value) {
  v4l2_query_ext_ctrl query{};
  query.id = control;
  if (call(file_, VIDIOC_QUERY_EXT_CTRL, &query) < 0) return false;
  v4l2_ext_control change{};
  change.id = control;
  if (query.type == V4L2_CTRL_TYPE_INTEGER64) {
    change.value64 = value;
  } else {
    change.value = static_cast<std::int32_t>(value);
  }
  v4l2_ext_controls list{};
  list.which = V4L2_CTRL_WHICH_CUR_VAL;
  list.count = 1;
  list.controls = &change;
  return call(file_, VIDIOC_S_EXT_CTRLS, &list) == 0;
}

bool V4l2Camera::read_value(CameraControl *control) const {
  v4l2_ext_control value{};
  value.id = control->id;
  v4l2_ext_controls list{};
  list.which = V4L2_CTRL_WHICH_CUR_VAL;
  list.count = 1;
  list.controls = &value;
  if (call(file_, VIDIOC_G_EXT_CTRLS, &list) < 0) return false;
  control->value =
      control->type == V4L2_CTRL_TYPE_INTEGER64 ? value.value64 : std::int64_t{value.value};
  return true;
}

}  // namespace nox::app
