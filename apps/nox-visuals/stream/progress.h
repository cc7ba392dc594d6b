// How far a stream has come, as a line on a terminal.
#ifndef NOX_VISUALS_STREAM_PROGRESS_H_
#define NOX_VISUALS_STREAM_PROGRESS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace nox::app {

struct ProgressState {
  std::uint64_t frames = 0;
  std::uint64_t dropped = 0;
  double elapsed_s = 0;
  std::optional<double> part;  // of the whole, 0 to 1, where the length is known
};

// A bar, the rate and the time left where the length is known, else counts and the rate; at most
// `columns` wide.
std::string progress_line(const ProgressState &state, int columns);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_PROGRESS_H_
