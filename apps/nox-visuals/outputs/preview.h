// The picture in a window, with a ring around the pen.
#ifndef NOX_VISUALS_OUTPUTS_PREVIEW_H_
#define NOX_VISUALS_OUTPUTS_PREVIEW_H_

#include <gst/gst.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "nox-visuals/outputs/output.h"

namespace nox::app {

// Launch description of a branch that shows the newest frame in `sink`, with the element that draws
// the ring where the program was built with cairo.
std::string preview_branch(const std::string &sink);

// The ring follows the observations; it is drawn in the window's own thread.
class Preview final : public Output {
 public:
  Preview();

  // Draws in each new pipeline with a preview_branch(). The pipeline may outlive the preview.
  void attach(GstElement *pipeline);

  void take(const Observation &observation) override;

 private:
  struct Ring {
    std::mutex mutex;
    std::optional<Pen> pen;
  };

  std::shared_ptr<Ring> ring_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_PREVIEW_H_
