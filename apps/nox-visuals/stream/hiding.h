// Hides from the tracker what is no pen: what lies under a mask, and what is too bright.
#ifndef NOX_VISUALS_STREAM_HIDING_H_
#define NOX_VISUALS_STREAM_HIDING_H_

#include <gst/gst.h>
#include <gst/video/video.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/masks/auto_darkening.h"
#include "nox-visuals/masks/blanking.h"
#include "nox-visuals/masks/mask_learner.h"
#include "nox-visuals/masks/picture_mask.h"
#include "nox-visuals/options/mask_options.h"
#include "nox-visuals/outputs/whole_file.h"

namespace nox::app {

// Frames are changed in front of the tracker only: who else holds a buffer keeps the picture as it
// was. While a mask is learned the tracker sees black.
class Hiding {
 public:
  // Throws UsageError for a mask that is no picture or hides too much, and OutputError for a file
  // that cannot be written.
  explicit Hiding(const MaskOptions &options);
  ~Hiding();

  // Changes what comes to `sink` from now on, one pad after the other. `pressed` says, from the
  // streaming thread, whether the pen was pressed in the last frame.
  void attach(GstPad *sink, std::function<bool()> pressed);

 private:
  static GstPadProbeReturn on_buffer(GstPad *pad, GstPadProbeInfo *info, gpointer hiding);

  bool idle() const;
  bool note_caps(GstPad *pad);
  void make_blanking();
  std::uint8_t darker(const NoxVideoFrame &frame);
  bool learn(GstPad *pad, const NoxVideoFrame &frame, std::int64_t now);
  bool keep_learned(GstPad *pad);

  std::string mask_name_;
  std::optional<PictureMask> file_mask_, learned_;
  std::unique_ptr<MaskLearner> learner_;  // while it learns
  std::int64_t learn_ns_;
  std::optional<std::int64_t> learns_from_;  // the first frame's time
  std::optional<WholeFile> output_;
  std::optional<AutoDarkening> auto_;
  std::uint8_t darken_ = 0;
  int said_level_ = -1;  // of auto_
  std::function<bool()> pressed_ = [] { return false; };

  GstPointer<GstCaps> caps_;  // of the frames; what they say:
  GstVideoInfo info_{};
  Blanking hidden_;      // in frames of this size
  Blanking everything_;  // likewise
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_HIDING_H_
