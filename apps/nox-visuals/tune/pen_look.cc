#include "nox-visuals/tune/pen_look.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/tune/pen_watch.h"

namespace nox::app {
namespace {

constexpr int kEnough = 45;     // pictures of each state
constexpr double kMoves = 4;    // work pixels from picture to picture
constexpr int kLumaGrowth = 2;  // by which the tracker's masks are larger than what they show
constexpr int kChromaGrowth = 14;

struct Point {
  double x = 0, y = 0;
};

Point centre_of(const Blob &blob) {
  return {double{blob.centre_x}, double{blob.centre_y}};
}

// How long the blob is along a direction of length 1.
double extent(const Blob &blob, const Point &direction) {
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();
  for (int i = 0; i < blob.pixel_count; ++i) {
    const double at = blob.pixels[i].x * direction.x + blob.pixels[i].y * direction.y;
    low = std::min(low, at);
    high = std::max(high, at);
  }
  return high - low;
}

// The region that holds the tip, in the colour that the tracker has decided for.
const Blob *glow_around(const PenTracker &tracker) {
  const BlobList *regions = tracker.pressed != 0 ? tracker.v_blobs : tracker.u_blobs;
  for (int i = 0; i < blob_list_count(regions); ++i) {
    const Blob *region = blob_list_get(regions, i);
    if (blob_inside(tracker.pen, region) != 0) return region;
  }
  return nullptr;
}

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// What the pictures have shown so far.
class Gathered {
 public:
  void add(const PenTracker &tracker) {
    const Blob &pen = *tracker.pen;
    const double width = pen.width - kLumaGrowth;
    const double height = pen.height - kLumaGrowth;
    tips_.push_back((width + height) / 2);
    if (const Blob *glow = glow_around(tracker)) {
      auto &glows = tracker.pressed != 0 ? pressed_glows_ : hovering_glows_;
      glows.push_back(std::min(glow->width, glow->height) - kChromaGrowth);
    }
    if (last_) add_motion(pen);
    last_ = centre_of(pen);
  }

  void skip() { last_.reset(); }

  void finish(PenLook *look) const {
    look->tip = median(tips_);
    look->hovering_glow = median(hovering_glows_);
    look->pressed_glow = median(pressed_glows_);
    look->speed = median(speeds_);
    look->blur = std::max(0.0, median(blurs_));
  }

 private:
  void add_motion(const Blob &pen) {
    const Point now = centre_of(pen);
    const Point way = {now.x - last_->x, now.y - last_->y};
    const double speed = std::hypot(way.x, way.y);
    if (speed < kMoves) return;
    speeds_.push_back(speed);
    const Point along = {way.x / speed, way.y / speed};
    blurs_.push_back(extent(pen, along) - extent(pen, {-along.y, along.x}));
  }

  std::vector<double> tips_, hovering_glows_, pressed_glows_, speeds_, blurs_;
  std::optional<Point> last_;  // of the picture before, when it had the pen
};

void note_light(const Light &now, const Light &without, PenLook *look) {
  constexpr double kSmallestPen = 2e-5;  // two by two work pixels are 3.5e-5
  for (std::size_t plane = 0; plane < 3; ++plane) {
    if (now.reaching[plane] > without.reaching[plane] + kSmallestPen) look->came[plane] = true;
  }
}

std::string pixels(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.0f", value);
  return text.data();
}

// Why there is no pen, and what to do.
Finding look_for_reason(const PenLook &look) {
  const bool bright = look.came[0];
  const bool coloured = look.came[1] || look.came[2];
  if (!bright && !coloured) {
    return {Verdict::kWarn, "pen", "was not seen: nothing bright or strongly coloured came",
            "is it on, charged and in view? Come closer, or set a longer exposure"};
  }
  if (!bright) {
    return {Verdict::kWarn, "pen", "was not seen: its glow is there, but its tip is too dark",
            "a white, brighter tip in its middle, or a longer exposure"};
  }
  if (!coloured) {
    return {Verdict::kWarn, "pen", "was not seen: its tip is there, but its glow is too pale",
            "a larger diffuser in deep blue or red, more saturation, or a shorter exposure"};
  }
  if (!look.came[1]) {
    return {Verdict::kWarn, "pen", "was not seen: it is red, and a pen is found while it hovers",
            "hover in blue first; track --swap-colours for a pen that hovers red"};
  }
  return {Verdict::kWarn, "pen", "was not seen: no small bright tip inside of its glow",
          "from closer or farther away; the tip is 2 to 28 pixels of 448 and surrounded by colour"};
}

Finding look_at_state(const PenLook &look) {
  const std::string text = "hovering in " + std::to_string(look.hovering) + " and pressed in " +
                           std::to_string(look.pressed) + " of " + std::to_string(look.pictures) +
                           " pictures";
  if (look.pressed > 0 && look.hovering > 0) return {Verdict::kOk, "pen", text, ""};
  if (look.pressed > 0) return {Verdict::kWarn, "pen", text, "hover for longer than a moment"};
  return {Verdict::kWarn, "pen", text,
          look.came[2] ? "press in the middle of the picture, after hovering there"
                       : "nothing red came: press it, or look at its switch and its red LED"};
}

Finding look_at_tip(const PenLook &look) {
  constexpr double kSmall = 4;  // two would do, if nothing moved and nothing were compressed
  constexpr double kLarge = 24;
  const std::string text = pixels(look.tip) + " pixels of 448";
  if (look.tip < kSmall) {
    return {Verdict::kWarn, "tip", text,
            "a larger white core, closer to the camera, or a longer exposure"};
  }
  if (look.tip > kLarge) {
    return {Verdict::kWarn, "tip", text, "a smaller core, farther away, or a shorter exposure"};
  }
  return {Verdict::kOk, "tip", text, ""};
}

Finding look_at_glow(const char *subject, double glow, double tip) {
  constexpr double kLeast = 12;  // which survives that compression halves it
  const std::string text = pixels(glow) + " pixels of 448";
  if (glow >= std::max(kLeast, tip)) return {Verdict::kOk, subject, text, ""};
  return {Verdict::kWarn, subject, text,
          "a larger diffuser, about three times as wide as the tip, or a deeper colour"};
}

Finding look_at_blur(const PenLook &look) {
  if (look.speed == 0) return {Verdict::kOk, "blur", "unknown: the pen did not move", ""};
  const std::string text =
      pixels(look.blur) + " pixels at " + pixels(look.speed) + " pixels a picture";
  constexpr double kMuch = 0.5;  // of the way from picture to picture
  if (look.blur <= kMuch * look.speed) return {Verdict::kOk, "blur", text, ""};
  return {Verdict::kWarn, "blur", text, "a shorter exposure and a brighter pen"};
}

}  // namespace

PenLook look_at_pen(CameraPictures *pictures, const Light &without, double seconds) {
  const PenTrackerPointer tracker(pen_tracker_new());
  PenLook look;
  Gathered gathered;
  CameraPicture picture = pictures->next();
  const double end = picture.seconds + seconds;
  for (; picture.seconds < end; picture = pictures->next()) {
    ++look.pictures;
    note_light(measure_light(*picture.frame), without, &look);
    const auto pen = find_pen(tracker.get(), *picture.frame);
    if (!pen) {
      gathered.skip();
      continue;
    }
    ++(pen->pressed ? look.pressed : look.hovering);
    gathered.add(*tracker);
    if (look.hovering >= kEnough && look.pressed >= kEnough) break;
  }
  gathered.finish(&look);
  return look;
}

Findings findings_of(const PenLook &look) {
  if (look.hovering + look.pressed == 0) return {look_for_reason(look)};
  Findings findings = {look_at_state(look), look_at_tip(look)};
  if (look.hovering > 0) {
    findings.push_back(look_at_glow("blue-glow", look.hovering_glow, look.tip));
  }
  if (look.pressed > 0) findings.push_back(look_at_glow("red-glow", look.pressed_glow, look.tip));
  findings.push_back(look_at_blur(look));
  return findings;
}

}  // namespace nox::app
