// What was said of the pen in a clip of the pen's scene, beside the truth.
#ifndef NOX_VISUALS_DEMO_PEN_PATH_H_
#define NOX_VISUALS_DEMO_PEN_PATH_H_

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "nox-visuals/outputs/output.h"

namespace nox::app::demo {

// The pen by the number of its frame, at 30 frames a second.
using PenPath = std::map<std::uint32_t, Pen>;

class PenRecorder final : public Output {
 public:
  // `path` must outlive it.
  explicit PenRecorder(PenPath *path) : path_(path) {}

  void take(const Observation &observation) override;

 private:
  PenPath *path_;
};

struct PenScore {
  std::uint32_t visible = 0;   // frames with a pen
  std::uint32_t found = 0;     // of these
  std::uint32_t right = 0;     // of the found ones, pressed or not as it was
  std::uint32_t invented = 0;  // frames without a pen in which one was found
  std::vector<double> errors;  // of the found ones, in widths of the picture, rising
};

PenScore compare(const PenPath &path, std::uint32_t frames);

// For a picture of this width.
void print(std::ostream &out, const PenScore &score, int width);

// Draws the tracked path over the true one, in a PNG file of this size.
void draw(const PenPath &path, std::uint32_t frames, int width, int height,
          const std::string &file);

}  // namespace nox::app::demo

#endif  // NOX_VISUALS_DEMO_PEN_PATH_H_
