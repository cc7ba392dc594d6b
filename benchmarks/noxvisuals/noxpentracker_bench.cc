// CPU that noxpentracker takes in a pipeline, beside GStreamer's own way to its working size.
//
// What the tracker has to do depends on the picture:
// - The bars of "smpte" are strongly coloured regions, blue and magenta ones in U, red and magenta
//   ones in V. Standing still they are the picture with little to do: masks that have not changed
//   are not labelled again, and what is left is scaling.
// - Moving sideways they are labelled and linked anew in every frame.
// - "checkers-8" is red and green squares of 8 samples. At working size that is one region with
//   some 600 bright spots in it, all of which are labelled and linked in every frame when they
//   move: far more than a camera shows.
// The moving pictures are drawn while the pipeline runs: the time of the source alone is to be
// taken off theirs.
#include "noxvisuals/pipeline_run.h"

namespace {

constexpr int kSpeed = 7;  // no multiple of the squares

// The caps name no colorimetry. Then 1080 lines mean BT.709 and 252 lines BT.601, and videoscale
// converts the colours besides scaling them, which takes most of its time.
constexpr char kScale[] = "videoscale n-threads=1 ! video/x-raw,width=448,height=252";
// As where the caps do name it. The default method is bilinear with two taps, which leaves out more
// than half of the rows; Lanczos looks at every sample, as the tracker's filters do.
constexpr char kScaleOnly[] =
    "videoscale n-threads=1 matrix-mode=none ! video/x-raw,width=448,height=252";
constexpr char kScaleLanczos[] =
    "videoscale n-threads=1 matrix-mode=none method=lanczos ! video/x-raw,width=448,height=252";

}  // namespace

int main(int argc, char **argv) {
  const std::string still = nox::bench::still_source("smpte");
  const std::string moving = nox::bench::moving_source("smpte", kSpeed);
  const std::string squares = nox::bench::moving_source("checkers-8", kSpeed);
  return nox::bench::measure_pipelines(
      argc, argv,
      {
          {"still bars/1920x1080/nox", still, "noxpentracker"},
          {"still bars/1920x1080/videoscale", still, kScale},
          {"still bars/1920x1080/videoscale, colours kept", still, kScaleOnly},
          {"still bars/1920x1080/videoscale, colours kept, lanczos", still, kScaleLanczos},
          {"still bars/1920x1080/source and sink alone", still, ""},
          {"moving bars/1920x1080/nox", moving, "noxpentracker"},
          {"moving bars/1920x1080/videoscale", moving, kScale},
          {"moving bars/1920x1080/source and sink alone", moving, ""},
          {"moving squares/1920x1080/nox", squares, "noxpentracker"},
          {"moving squares/1920x1080/videoscale", squares, kScale},
          {"moving squares/1920x1080/source and sink alone", squares, ""},
      });
}
