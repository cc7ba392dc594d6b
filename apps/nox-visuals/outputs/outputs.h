// The outputs that the options name.
#ifndef NOX_VISUALS_OUTPUTS_OUTPUTS_H_
#define NOX_VISUALS_OUTPUTS_OUTPUTS_H_

#include <memory>
#include <string>
#include <vector>

#include "nox-visuals/options/output_options.h"
#include "nox-visuals/outputs/output.h"

namespace nox::app {

// Standard output's lines and what `options` name, for the stream of this name. Throws
// OutputError when one cannot be opened, and UsageError when it is not built in.
std::vector<std::unique_ptr<Output>> open_outputs(const OutputOptions &options,
                                                  const std::string &stream, bool live);

// Whether `options` name any.
bool any_output(const OutputOptions &options);

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_OUTPUTS_H_
