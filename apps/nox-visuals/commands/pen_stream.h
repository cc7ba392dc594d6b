// One stream with a pen, from its source to its outputs.
#ifndef NOX_VISUALS_COMMANDS_PEN_STREAM_H_
#define NOX_VISUALS_COMMANDS_PEN_STREAM_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/options/mask_options.h"
#include "nox-visuals/outputs/output.h"
#include "nox-visuals/sources/source.h"
#include "nox-visuals/steps/step.h"

namespace nox::app {

struct PenStream {
  Source source;
  std::string word;             // the source as people named it
  std::optional<double> retry;  // as in StreamPlan
  MaskOptions masks;
  bool recover = true;                 // a pen that a bad frame lost
  bool swap_colours = false;           // the pen glows red while it hovers
  std::optional<std::string> preview;  // launch description of a sink to show the picture in
  std::vector<std::unique_ptr<Step>> steps;
  // Makes the outputs once it is known whether the stream is live. May throw OutputError.
  std::function<std::vector<std::unique_ptr<Output>>(bool live)> open_outputs;
};

// Follows the pen until the stream ends; returns the exit status. Throws StreamError when it fails,
// after the end has gone to the outputs, and OutputError.
int follow_pen(PenStream pen_stream);

}  // namespace nox::app

#endif  // NOX_VISUALS_COMMANDS_PEN_STREAM_H_
