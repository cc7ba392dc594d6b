#include "nox-visuals/stream/hiding.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/stream/mapped_picture.h"
#include "nox-visuals/stream/mask_file.h"

namespace nox::app {
namespace {

constexpr int kWorthSaying = 10;  // steps of luma

std::string percent_of(double share) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f %%", 100 * share);
  return text;
}

std::string too_much(double share) {
  return "hides " + percent_of(share) + " of the picture, more than a third: too little is left";
}

std::string size_of(int width, int height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

PictureMask full_mask(int width, int height) {
  PictureMask mask(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) mask.hide(x, y);
  }
  return mask;
}

// Of the stream where it has one, so that a file teaches what it taught when it was live.
std::int64_t time_of(const GstBuffer *buffer) {
  if (GST_BUFFER_PTS_IS_VALID(buffer)) return static_cast<std::int64_t>(GST_BUFFER_PTS(buffer));
  return g_get_monotonic_time() * 1000;
}

}  // namespace

Hiding::Hiding(const MaskOptions &options)
    : mask_name_(options.mask), learn_ns_(std::llround(options.learn_seconds * 1e9)) {
  if (!mask_name_.empty()) {
    file_mask_ = read_mask(mask_name_);
    const double share = file_mask_->share();
    if (share > kMostHidden) throw UsageError("--mask " + mask_name_ + " " + too_much(share));
  }
  if (learn_ns_ > 0) learner_ = std::make_unique<MaskLearner>();
  if (!options.output.empty()) output_.emplace(options.output);
  if (options.darken == "auto") {
    auto_.emplace();
  } else {
    darken_ = static_cast<std::uint8_t>(std::atoi(options.darken.c_str()));
  }
}

Hiding::~Hiding() {
  if (learner_ != nullptr && learns_from_) say("the stream ended before the mask was learned");
}

void Hiding::attach(GstPad *sink, std::function<bool()> pressed) {
  pressed_ = std::move(pressed);
  if (!idle()) gst_pad_add_probe(sink, GST_PAD_PROBE_TYPE_BUFFER, on_buffer, this, nullptr);
}

bool Hiding::idle() const {
  return !file_mask_ && !learned_ && learner_ == nullptr && !auto_ && darken_ == 0;
}

GstPadProbeReturn Hiding::on_buffer(GstPad *pad, GstPadProbeInfo *info, gpointer hiding) {
  auto *self = static_cast<Hiding *>(hiding);
  if (!self->note_caps(pad)) return GST_PAD_PROBE_OK;
  // Who else holds the buffer keeps it, and its memory is copied when it is mapped.
  GstBuffer *buffer = gst_buffer_make_writable(GST_PAD_PROBE_INFO_BUFFER(info));
  GST_PAD_PROBE_INFO_DATA(info) = buffer;
  MappedPicture picture(self->info_, buffer);
  NoxVideoFrame *frame = picture.frame();
  if (frame == nullptr) return GST_PAD_PROBE_OK;
  self->hidden_.apply(frame, self->darker(*frame));
  if (self->learner_ == nullptr) return GST_PAD_PROBE_OK;
  const bool learned = self->learn(pad, *frame, time_of(buffer));
  self->everything_.apply(frame, 0);
  return learned ? GST_PAD_PROBE_OK : GST_PAD_PROBE_DROP;
}

// False where there are no frames that can be changed.
bool Hiding::note_caps(GstPad *pad) {
  GstPointer<GstCaps> caps(gst_pad_get_current_caps(pad));
  if (caps != nullptr && caps == caps_) return true;
  if (caps == nullptr || gst_video_info_from_caps(&info_, caps.get()) == FALSE) return false;
  caps_ = std::move(caps);
  make_blanking();
  return true;
}

void Hiding::make_blanking() {
  const int width = GST_VIDEO_INFO_WIDTH(&info_);
  const int height = GST_VIDEO_INFO_HEIGHT(&info_);
  PictureMask mask(width, height);
  if (file_mask_) {
    if (file_mask_->width() != width || file_mask_->height() != height) {
      say("--mask " + mask_name_ + " is " + size_of(file_mask_->width(), file_mask_->height()) +
          " and is scaled to the picture's " + size_of(width, height));
    }
    mask.add(file_mask_->scaled(width, height));
  }
  if (learned_) mask.add(learned_->scaled(width, height));
  hidden_ = Blanking(mask);
  everything_ = Blanking(full_mask(width, height));
}

std::uint8_t Hiding::darker(const NoxVideoFrame &frame) {
  if (!auto_) return darken_;
  auto_->look(frame, pressed_());
  const int level = auto_->level();
  if (said_level_ < 0 || std::abs(level - said_level_) >= kWorthSaying) {
    said_level_ = level;
    say("--darken auto: takes " + std::to_string(level) + " from luma");
  }
  return auto_->level();
}

// False when what was learned cannot be used: the stream has failed then.
bool Hiding::learn(GstPad *pad, const NoxVideoFrame &frame, std::int64_t now) {
  if (!learns_from_) {
    learns_from_ = now;
    say("learns what to hide: show no pen yet");
  }
  const std::int64_t since = now - *learns_from_;
  learner_->look(frame, since >= learn_ns_ / 2);
  return since < learn_ns_ || keep_learned(pad);
}

bool Hiding::keep_learned(GstPad *pad) {
  const bool moved = learner_->saw_moving_pen();
  learned_ = learner_->mask();
  learner_.reset();
  PictureMask all = learned_->scaled(GST_VIDEO_INFO_WIDTH(&info_), GST_VIDEO_INFO_HEIGHT(&info_));
  if (file_mask_) all.add(file_mask_->scaled(all.width(), all.height()));
  const double share = all.share();
  std::string why;
  if (share > kMostHidden) why = "the mask that was learned " + too_much(share);
  if (why.empty() && output_) {
    try {
      if (!write_mask(all, output_->descriptor())) throw OutputError("cannot be written");
      output_->keep();
    } catch (const std::runtime_error &error) {
      why = std::string("--mask-output: ") + error.what();
    }
  }
  if (!why.empty()) {
    const GstPointer<GstElement> element(gst_pad_get_parent_element(pad));
    GST_ELEMENT_ERROR(element.get(), STREAM, FAILED, ("%s", why.c_str()), (nullptr));
    return false;
  }
  output_.reset();
  hidden_ = Blanking(all);
  say("the mask is learned and hides " + percent_of(share) + " of the picture" +
      (moved ? "; something like a pen moved meanwhile: if somebody showed the pen, its path is "
               "hidden now, and learning anew helps"
             : ""));
  return true;
}

}  // namespace nox::app
